#pragma once

#include "device/device.h"
#include "device/native/channel.h"
#include "device/native/root_files.h"

namespace device {

/// Is the board that a device stands on: the first process of a PID namespace, in user, mount and network namespaces
/// of its own. It keeps the media and the lab network while devices come and go, boots a device when it is told to,
/// tells how it ended, and runs commands in the lab. Ends with the channel, and everything on it ends with it.
[[noreturn]] void RunBoard(const BootOptions& options, const RootPlan& plan, Channel launcher);

}  // namespace device
