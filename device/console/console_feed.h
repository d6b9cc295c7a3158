#pragma once

#include "device/console/operator_terminal.h"
#include "device/device.h"

namespace device {

/// Types standard input, which is a file or a pipe, on a started device's console, a line each time the console waits
/// for one, and powers the device off when it is quiet after the last.
/// @return exit status of the session: 0, 128 + number of the signal, 1 when the device failed.
int FeedInput(Device& device, SessionSignals& signals);

}  // namespace device
