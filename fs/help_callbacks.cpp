#include "fs/help_callbacks.h"

#include <string_view>

#include "fs/file_help.h"
#include "fs/medium.h"
#include "fs/names/name_rules.h"
#include "fs/path.h"
#include "util/result.h"

std::uint32_t HelpMore(const char* word, VEC_S* help, const ESH_CMD_ELEMENT_S* /*element*/) {
  return FS_HelpBaseEx(word, FS_HELP_EXISTING_FILE, nullptr, help);
}

std::uint32_t HelpCopySource(const char* word, VEC_S* help, const ESH_CMD_ELEMENT_S* element) {
  return HelpMore(word, help, element);
}

std::uint32_t HelpCopyDest(const char* word, VEC_S* help, const ESH_CMD_ELEMENT_S* element) {
  return HelpMoveDest(word, help, element);
}

std::uint32_t HelpMoveSource(const char* word, VEC_S* help, const ESH_CMD_ELEMENT_S* element) {
  return HelpMore(word, help, element);
}

std::uint32_t HelpMoveDest(const char* word, VEC_S* help, const ESH_CMD_ELEMENT_S* /*element*/) {
  return FS_HelpBaseEx(word, FS_HELP_DESTINATION, nullptr, help);
}

std::uint32_t HelpDelete(const char* word, VEC_S* help, const ESH_CMD_ELEMENT_S* element) {
  return HelpMore(word, help, element);
}

std::uint32_t HelpMkdir(const char* word, VEC_S* help, const ESH_CMD_ELEMENT_S* /*element*/) {
  return FS_HelpBaseEx(word, FS_HELP_NEW_DIRECTORY, nullptr, help);
}

std::uint32_t HelpRmdir(const char* word, VEC_S* help, const ESH_CMD_ELEMENT_S* /*element*/) {
  return FS_HelpBaseEx(word, FS_HELP_EXISTING_DIRECTORY, nullptr, help);
}

std::uint32_t HelpDir(const char* word, VEC_S* help, const ESH_CMD_ELEMENT_S* /*element*/) {
  return FS_HelpBaseEx(word, FS_HELP_FILE_OR_DIRECTORY, nullptr, help);
}

std::uint32_t HelpFormat(const char* word, VEC_S* help, const ESH_CMD_ELEMENT_S* /*element*/) {
  return FS_HelpBaseEx(word, FS_HELP_MEDIUM, HelpDeviceFilter, help);
}

std::uint32_t HelpExistFile(const char* word, VEC_S* help, const ESH_CMD_ELEMENT_S* element) {
  return HelpMore(word, help, element);
}

std::uint32_t HelpBothFile(const char* word, VEC_S* help, const ESH_CMD_ELEMENT_S* element) {
  return HelpMoveDest(word, help, element);
}

std::uint32_t HelpDeviceFilter(const char* full) {
  char directory[kNameRoom];
  char file[kComponentRoom];
  const bool is_root =
      ESH_FS_AnalyseFileName(full, directory, file) == kSuccess && directory[0] == '\0' && file[0] == '\0';
  const std::string_view name(full);
  const char* device = name.starts_with(kMediaPrefix) ? full + kMediaPrefix.size() : full;
  return is_root && ESH_CheckDevice(device) == 1 ? kSuccess : ESH_ERR_FAIL;
}

std::uint16_t CheckFormat(const char* word) {
  return word[0] != '/' && HelpDeviceFilter(word) == kSuccess ? 1 : 0;  // nobody types a full name
}
