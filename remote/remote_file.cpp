#include "remote/remote_file.h"

#include "fs/name_rules.h"
#include "shell/result.h"
#include "term/help_list.h"

std::uint16_t CheckRemoteFile(const char* word) { return ESH_FS_IsValidFileName(word) == kSuccess ? 1 : 0; }

std::uint32_t HelpRemoteFile(const char* /*word*/, VEC_S* help, const ESH_CMD_ELEMENT_S* /*element*/) {
  return ESH_NewHelpInfo("STRING", "Remote file name", help);
}
