#pragma once

/// Registers the commands that reach other hosts; on a device without an IP stack there are none.
void ESH_Protocol_Init();
