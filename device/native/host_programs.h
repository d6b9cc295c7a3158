#pragma once

#include <string>

#include "device/board/program_source.h"

namespace device {

/// The host's own programs, which a device in namespaces runs as they are.
class HostPrograms final : public ProgramSource {
 public:
  [[nodiscard]] std::string Find(const std::string& name) const override;
  std::string AddLibraries(const std::string& program, RootPlan& plan) const override;
};

}  // namespace device
