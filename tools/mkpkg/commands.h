#pragma once

#include <cstddef>
#include <span>

#include "tools/mkpkg/arguments.h"

namespace mkpkg {

inline constexpr std::size_t kMostOperands = 3;

/// A sub-command of the tool.
struct Command {
  const char* name;
  const char* help;                         ///< what --help prints
  std::span<const Option> options;          ///< besides --json, which all have
  const char* operands[kMostOperands + 1];  ///< what the help calls them; a null pointer ends them
  int (*run)(const Arguments& arguments);   ///< returns an ExitStatus
};

extern const Command kBuildCommand;
extern const Command kSignCommand;
extern const Command kKeyCommand;
extern const Command kInfoCommand;
extern const Command kCheckCommand;
extern const Command kExtractCommand;

}  // namespace mkpkg
