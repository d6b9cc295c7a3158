#pragma once

#include "pkg/format/verdict.h"

namespace mkpkg {

/// What a verdict on a package is called.
struct VerdictText {
  PackageVerdict verdict;
  const char* name;    ///< for scripts: lower case, words joined by hyphens
  const char* reason;  ///< for the package's maker
};
/// Every verdict has a text.
[[nodiscard]] const VerdictText& VerdictTextOf(PackageVerdict verdict);

}  // namespace mkpkg
