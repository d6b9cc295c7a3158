#pragma once

#include <memory>

#include "device/device.h"

namespace device {

/// Makes a device in namespaces of this machine. It needs no privileges where user namespaces are allowed. Nothing is
/// started before the first Boot; the device ends with the thread that called it.
std::unique_ptr<Device> MakeNativeDevice(BootOptions options);

}  // namespace device
