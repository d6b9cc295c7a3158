#pragma once

#include "pkg/format/verdict.h"

namespace mkpkg {

/// @return what a verdict on a package means, for its maker.
[[nodiscard]] const char* ReasonOf(PackageVerdict verdict);

/// @return the name of a verdict, for scripts: lower case, words joined by hyphens.
[[nodiscard]] const char* NameOfVerdict(PackageVerdict verdict);

}  // namespace mkpkg
