#pragma once

#include "device/console/operator_terminal.h"
#include "device/device.h"

namespace device {

/// Connects the console of a device that was started with the operator's terminal until the operator leaves with
/// Ctrl+\, the device halts, or a signal ends the session. A device that reboots is booted again.
/// @return exit status of the session: 0, 128 + number of the signal, 1 when the device failed.
int RelayTerminal(Device& device, SessionSignals& signals);

}  // namespace device
