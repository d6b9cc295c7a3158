#pragma once

#include <string>
#include <utility>

#include "device/board/program_source.h"

namespace device {

/// Programs for an Arm machine, from a directory that Debian packages were unpacked in.
class Arm64Programs final : public ProgramSource {
 public:
  explicit Arm64Programs(std::string root) : root_(std::move(root)) {}

  [[nodiscard]] std::string Find(const std::string& name) const override;
  std::string AddLibraries(const std::string& program, RootPlan& plan) const override;

 private:
  std::string AddLibrary(const std::string& path, RootPlan& plan) const;

  std::string root_;
};

}  // namespace device
