#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "device/board/channel.h"
#include "device/board/root_files.h"
#include "device/device.h"

namespace device {

/// What the first process of a device gets from the board it is on.
struct PowerSupply {
  std::string empty_directory;  ///< where its root file system is made
  std::string media_directory;  ///< holds each medium under its name
  Channel channel;              ///< to the launcher
};

/// Exit statuses of a device's first process; any other is an accident.
constexpr int kDeviceRestarted = 10;
constexpr int kDevicePoweredOff = 11;

/// What differs between the kinds of devices that can stand on a board.
class DeviceKind {
 public:
  DeviceKind() = default;
  DeviceKind(const DeviceKind&) = delete;
  DeviceKind& operator=(const DeviceKind&) = delete;
  virtual ~DeviceKind() = default;

  /// Finds on the host what a device is made of.
  /// @return an empty text, or one line that says what is missing.
  [[nodiscard]] virtual std::string Plan(const BootOptions& options, RootPlan& plan) const = 0;

  /// @return files and directories of the host, besides those of the plan, that the board must not cover.
  [[nodiscard]] virtual std::vector<std::string> NeededOfHost() const = 0;

  /// Makes a medium as it comes from its maker.
  /// @param place  its path in the board's directory, where nothing is yet.
  /// @return an empty text, or one line that says what went wrong.
  [[nodiscard]] virtual std::string MakeMedium(const Medium& medium, const std::string& place) const = 0;

  /// @return the command that takes a medium out of a running device.
  [[nodiscard]] virtual std::string PullCommand(const std::string& medium) const = 0;

  /// Is the first process of a device: starts it, passes on what is said to it and what becomes of it, and ends with
  /// the channel. Called in a process that is number 1 of a fresh PID namespace.
  [[noreturn]] virtual void RunFirstProcess(const BootOptions& options, const RootPlan& plan,
                                            PowerSupply supply) const = 0;

  /// @return how long it may take until the shell starts, on a machine under load.
  [[nodiscard]] virtual std::chrono::milliseconds BootTime() const = 0;
};

}  // namespace device
