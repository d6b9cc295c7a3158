#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "device/board/channel.h"
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

  /// Makes a medium as it comes from its maker.
  /// @param place  its path in the board's directory, where nothing is yet.
  /// @return an empty text, or one line that says what went wrong.
  [[nodiscard]] virtual std::string MakeMedium(const Medium& medium, const std::string& place) const = 0;

  /// @return the command that takes a medium out of a running device.
  [[nodiscard]] virtual std::string PullCommand(const std::string& medium) const = 0;

  /// Is the first process of a device: starts it, passes on what is said to it and what becomes of it, and ends with
  /// the channel. Called in a process that is number 1 of a fresh PID namespace.
  [[noreturn]] virtual void RunFirstProcess(const BootOptions& options, PowerSupply supply) const = 0;

  /// @return how long it may take until the shell starts, on a machine under load.
  [[nodiscard]] virtual std::chrono::milliseconds BootTime() const = 0;
};

/// Is the board that a device stands on: the first process of a PID namespace, in user, mount and network namespaces
/// of its own. It keeps the media and the lab network while devices come and go, boots a device when it is told to,
/// tells how it ended, and runs commands in the lab. Ends with the channel, and everything on it ends with it.
[[noreturn]] void RunBoard(const DeviceKind& kind, const BootOptions& options, Channel launcher);

/// Makes a device of a kind on a board of its own, in namespaces of this machine. Nothing is started before the first
/// Boot; the device ends with the thread that called it.
std::unique_ptr<Device> MakeBoardDevice(std::unique_ptr<DeviceKind> kind, BootOptions options);

}  // namespace device
