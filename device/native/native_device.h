#pragma once

#include <memory>

#include "device/device.h"

namespace device {

/// Makes a device in namespaces of this machine. It needs no privileges where user namespaces are allowed. Nothing is
/// started before Boot.
std::unique_ptr<Device> MakeNativeDevice(BootOptions options);

}  // namespace device
