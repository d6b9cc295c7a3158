#pragma once

#include <string>

namespace mkpkg {

/// Prints "mkpkg: problem" on standard error.
/// @return the status.
int Fail(int status, const std::string& problem);

/// Prints "mkpkg: warning: text" on standard error.
void Warn(const std::string& text);

/// Ends a sub-command that wrote to standard output. @return kDone, or kCannotWrite when that failed.
int EndOutput();

}  // namespace mkpkg
