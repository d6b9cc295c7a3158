#include "remote/remote_file.h"

#include "fs/names/name_rules.h"
#include "term/help/help_list.h"
#include "util/result.h"

std::uint16_t CheckRemoteFile(const char* word) { return ESH_FS_IsValidFileName(word) == kSuccess ? 1 : 0; }

std::uint32_t HelpRemoteFile(const char* /*word*/, VEC_S* help, const ESH_CMD_ELEMENT_S* /*element*/) {
  return ESH_NewHelpInfo("STRING", "Remote file name", help);
}
