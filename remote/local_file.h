#pragma once

#include <cstdint>

#include "fs/names/name_rules.h"
#include "remote/host_address.h"
#include "util/fixed_text.h"

/// The local side of a transfer, named by g_szLocalFile. `tool`, "ftp" or "tftp", is what the messages begin with.

using TargetName = FixedText<kNameRoom + 1>;

/// Refuses a directory that a get would write into and that does not exist.
[[nodiscard]] Refusal CheckLocalFile(const char* tool);

/// Composes the full name that a get writes to: "/mnt/" and the local name, and in a directory the last part of the
/// remote name. The local name is not resolved against the working directory.
[[nodiscard]] Refusal GetFullLocalName(const char* local, const char* remote, TargetName& target);

/// Refuses a target that a link on a medium leads away from the media. A local name without a device is none on a
/// medium: it is taken below /mnt itself.
[[nodiscard]] Refusal CheckTarget(const char* tool, const TargetName& target);

/// Asks whether a file that exists may be overwritten. @return true when nothing stands in the way of the get.
[[nodiscard]] bool IsLineGetConfirm(const TargetName& target);

/// All of the above, in this order, with the recorded names.
[[nodiscard]] Refusal ChooseTarget(const char* tool, TargetName& target);

/// Waits until the target's medium has what a get has brought, be it a part: its tool does not.
/// @return the tool's result, as it is given.
[[nodiscard]] std::uint32_t Stored(std::uint32_t result, const TargetName& target);

/// Finds the full name of the file that a put reads, which must exist.
[[nodiscard]] Refusal GetLocalFileFullName(const char* tool, char (&full)[kNameRoom]);
