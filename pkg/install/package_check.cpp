#include "pkg/install/package_check.h"

#include <pthread.h>
#include <unistd.h>

#include <cstdio>

#include "fs/medium.h"
#include "fs/names/name_rules.h"
#include "fs/path.h"
#include "fs/user_file.h"
#include "pkg/format/head_check.h"
#include "pkg/format/package_name.h"
#include "pkg/format/product_code.h"
#include "pkg/format/signature.h"
#include "pkg/install/progress_dots.h"
#include "util/result.h"

namespace {

constexpr char kNoPackage[] = "The package %s doesn't exist. \r\n";  // with its blank

/// Whether a name, which may be relative to the working directory, leads to a present medium.
bool IsOnMedium(const char* name) {
  char directory[kNameRoom];
  char file[kComponentRoom];
  char full[kNameRoom];
  return ESH_FS_AnalyseFileName(name, directory, file) == kSuccess &&
         ESH_InputName2FullValidName(name, 0, sizeof(full), full) == kSuccess && IsOnPresentMedium(full);
}

bool IsExistingPackage(const char* name, char* full) {
  return ESH_InputName2FullValidName(name, 1, kNameRoom, full) == kSuccess &&
         ESH_IsUserManipulatedFile(full) == kSuccess && access(full, F_OK) == 0;
}

}  // namespace

std::uint32_t PackageNameProcess(const char* name, char* fullPath) {
  if (!IsOnMedium(name) || !IsPackageName(name)) return PrintRefusal(PackageVerdict::kName, name);
  if (!IsExistingPackage(name, fullPath)) {
    std::printf(kNoPackage, name);
    return ESH_ERR_FAIL;
  }
  return kSuccess;
}

std::uint32_t PrintRefusal(PackageVerdict verdict, const char* name) {
  std::printf(LineOfRefusal(verdict), name);
  return ResultOf(verdict);
}

PackageVerdict VerifyWithDots(const char* name, PKG_READER_S* package) {
  const pthread_t dots = ESH_PKG_CreateDotThrd(name);
  const PackageVerdict verdict = JudgePackage(package, ProductCode(), kSignKeyDirectory);
  g_bEshDone = 1;
  if (dots != kNoThread) pthread_join(dots, nullptr);
  g_bEshDone = 0;
  return verdict;
}
