#pragma once

#include <cstdint>
#include <cstdio>

#include "util/result.h"

/// Messages that more than one command on files prints. Those that end in "\r" are written with puts(3).

inline constexpr char kDoesNotExist[] = "The file or directory doesn't exist.\r";
inline constexpr char kWrongName[] = "Wrong file name (directory name). Please check it.\r";
inline constexpr char kExecutionFailure[] = "Execution failure.\r";
inline constexpr char kNoRoom[] =
    "Failed to finish the operation because of insufficient storage space or quota limitation.\r";

/// The question before a file is replaced, with its display name.
inline constexpr char kOverwriteQuestion[] = "%s already exists. Overwrite it?[Y/N]:";

/// Prints why a command does nothing. @return ESH_ERR_FAIL, which is then the command's result.
inline std::uint32_t Refuse(const char* message) {
  std::puts(message);
  return ESH_ERR_FAIL;
}
