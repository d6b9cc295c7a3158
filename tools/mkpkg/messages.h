#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tools/mkpkg/arguments.h"
#include "tools/mkpkg/json_writer.h"

namespace mkpkg {

/// The option of every sub-command that has its result told to programs.
inline constexpr Option kJson = {"json"};

/// Prints "mkpkg: problem" on standard error.
/// @return the status.
int Fail(int status, const std::string& problem);

/// Ends what was written to standard output. @return kDone, or kCannotWrite when that failed.
int EndOutput();

/// Ends a sub-command that did its work: prints the warnings on standard error, or with --json one object on standard
/// output, whose last member they are.
/// @param members  adds the object's other members.
/// @return kDone, or kCannotWrite when that failed.
int Conclude(const Arguments& arguments, const std::vector<std::string>& warnings,
             const std::function<void(JsonWriter&)>& members);

}  // namespace mkpkg
