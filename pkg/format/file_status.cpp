#include "pkg/format/file_status.h"

#include <cerrno>

#include "pkg/format/verdict.h"
#include "util/regular_file.h"
#include "util/result.h"

std::uint32_t PKG_Fstat(const char* path, struct stat* stat) {
  if (OpenRegularFile(path, Links::kRefuse, stat) != nullptr) {
    return kSuccess;
  }
  return errno == ELOOP ? kErrPackageMismatch : ESH_ERR_FAIL;
}

std::uint64_t PKG_GetFileSizeByUserPath(const char* path) {
  struct stat stat;
  return PKG_Fstat(path, &stat) == kSuccess ? static_cast<std::uint64_t>(stat.st_size) : 0;
}
