#pragma once

#include <cstdint>

/// "shutdown": takes the port down. What is set stays saved.
/// @return ESH_ERR_FAIL when a tool failed; the port then does not count as shut down.
std::uint32_t ESH_ProcShutdown();

/// "undo shutdown".
std::uint32_t ESH_ProcUndoShutdown();

/// Brings the port up and, if it was shut down, applies the saved settings. A setting that the kernel refuses is
/// forgotten without a word.
/// @return ESH_ERR_FAIL when the port did not come up.
std::uint32_t ESH_RecoverConfig();

/// Brings the port up again when it is shut down: setting or removing an address does that.
/// @return that verdict, or 0 when there was nothing to do.
std::uint32_t RecoverIfShut();
