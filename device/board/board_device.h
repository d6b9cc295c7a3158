#pragma once

#include <memory>

#include "device/board/device_kind.h"
#include "device/device.h"

namespace device {

/// Makes a device of a kind on a board of its own, in namespaces of this machine. Nothing is started before the first
/// Boot; the device ends with the thread that called it.
std::unique_ptr<Device> MakeBoardDevice(std::unique_ptr<DeviceKind> kind, BootOptions options);

}  // namespace device
