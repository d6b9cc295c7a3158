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

const char* LineOfRefusal(PackageVerdict verdict) {
  switch (verdict) {
    case PackageVerdict::kFirstUnit:
      return "The startup software images must be in the primary partition.\r\n";
    case PackageVerdict::kName:
      return "%s: Invalid file name.\r\n";
    case PackageVerdict::kPackageType:
      return "Package %s is not a system package.\r\n";
    case PackageVerdict::kCompatibilityList:
      return "File %s is invalid.\r\n";
    case PackageVerdict::kCompatible:
      return "This system image is not compliant with the boot image.\r\n";
    case PackageVerdict::kDescription:
      return "\r\nOperation failed! \r\n";  // with its blank
    case PackageVerdict::kDeviceTag:
      return "Operation failed!\r\n";
    case PackageVerdict::kImage:
    case PackageVerdict::kImageName:
      return "\r\nOperation failed!\r\nOperation failed!\r\n";
    default:
      return "%s is corrupted.\r\n";
  }
}
