#pragma once

#include <memory>

#include "device/device.h"

namespace device {

/// Makes a device that is an emulated 64-bit Arm machine with a kernel, modules and file systems of its own, in
/// namespaces of this machine. Nothing is started before the first Boot; the device ends with the thread that called
/// it. It differs from a native device in this:
/// - its console is a serial line, which has no window: the options' size and ResizeConsole change nothing;
/// - media are disks with FAT file systems, whose names know no upper and lower case;
/// - programs among the host files must be for Arm. The default shell stands for the one built by preset arm64.
std::unique_ptr<Device> MakeArm64Device(BootOptions options);

}  // namespace device
