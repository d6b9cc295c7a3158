#include "fs/user_file.h"

#include <cstring>

#include "fs/medium.h"
#include "fs/names/name_rules.h"
#include "fs/path.h"
#include "util/result.h"

namespace {

struct TypedName {
  char text[kMaxTypedName + 1];
};

/// Takes off the quotes. @return false when the argument is no legal place on a present medium.
bool ReadTypedName(const char* typed, TypedName& name) {
  std::uint32_t length = kMaxTypedName;
  char full[kNameRoom];
  return ESH_FS_ConvertToValidStr(typed, static_cast<std::uint32_t>(std::strlen(typed)), &length, name.text) ==
             kSuccess &&
         ESH_InputName2FullValidName(name.text, 0, sizeof(full), full) == kSuccess && IsOnPresentMedium(full);
}

}  // namespace

std::uint32_t ESH_IsUserManipulatedFile(const char* name) {
  char directory[kNameRoom];
  char file[kComponentRoom];
  if (ESH_FS_AnalyseFileName(name, directory, file) != kSuccess) return ESH_ERR_FAIL;
  return directory[0] == '\0' && file[0] == '\0' ? ESH_ERR_FAIL : kSuccess;
}

std::uint16_t ESH_FS_CheckInvalidFileDir(const char* typed) {
  TypedName name;
  return ReadTypedName(typed, name) ? 1 : 0;
}

std::uint16_t ESH_FS_CheckUserManipulatedFile(const char* typed) {
  TypedName name;
  return ReadTypedName(typed, name) && ESH_IsUserManipulatedFile(name.text) == kSuccess ? 1 : 0;
}
