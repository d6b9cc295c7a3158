#pragma once

#include <cstddef>
#include <span>

#include "tools/mkpkg/arguments.h"

namespace mkpkg {

/// A sub-command of the tool.
struct Command {
  const char* name;
  const char* help;  ///< what --help prints
  std::span<const Option> options;
  std::size_t least_operands;
  std::size_t most_operands;
  int (*run)(const Arguments& arguments);  ///< returns an ExitStatus
};

extern const Command kBuildCommand;
extern const Command kSignCommand;
extern const Command kKeyCommand;
extern const Command kInfoCommand;
extern const Command kCheckCommand;
extern const Command kExtractCommand;

}  // namespace mkpkg
