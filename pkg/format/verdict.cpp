#include "pkg/format/verdict.h"

#include "util/result.h"

std::uint32_t ResultOf(PackageVerdict verdict) {
  switch (verdict) {
    case PackageVerdict::kGood:
      return kSuccess;
    case PackageVerdict::kProductTag:
    case PackageVerdict::kTooManyFiles:
      return kErrPackageMismatch;
    case PackageVerdict::kKind:
      return kErrPackageKind;
    case PackageVerdict::kHeadCrc:
      return kErrPackageCrc;
    default:
      return ESH_ERR_FAIL;
  }
}
