#pragma once

#include <string>

#include "device/board/root_files.h"

namespace device {

/// Where the programs of a device come from.
class ProgramSource {
 public:
  ProgramSource() = default;
  ProgramSource(const ProgramSource&) = delete;
  ProgramSource& operator=(const ProgramSource&) = delete;
  virtual ~ProgramSource() = default;

  /// @return the place on the host of a program for the device; "" when there is none.
  [[nodiscard]] virtual std::string Find(const std::string& name) const = 0;

  /// Adds the shared libraries and the loader that a program needs; a file that is no program needs none.
  /// @return an empty text, or one line that says what is missing.
  virtual std::string AddLibraries(const std::string& program, RootPlan& plan) const = 0;
};

}  // namespace device
