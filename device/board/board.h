#pragma once

#include "device/board/channel.h"
#include "device/board/device_kind.h"
#include "device/board/root_files.h"
#include "device/device.h"

namespace device {

/// Is the board that a device stands on: the first process of a PID namespace, in user, mount and network namespaces
/// of its own. It keeps the media and the lab network while devices come and go, boots a device when it is told to,
/// tells how it ended, and runs commands in the lab. Ends with the channel, and everything on it ends with it.
[[noreturn]] void RunBoard(const DeviceKind& kind, const BootOptions& options, const RootPlan& plan, Channel launcher);

}  // namespace device
