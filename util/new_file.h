#pragma once

#include <sys/types.h>

#include <cstddef>

#include "util/unique_handle.h"

/// Creates a file for writing in place of whatever has its name, so that neither a planted link is followed nor a file
/// written that somebody else has open.
/// @return an owner of nothing when that is not possible.
[[nodiscard]] UniqueFd CreateAnew(const char* path, mode_t mode);

/// Writes all bytes. @return false when the medium has no room for them, or fails.
[[nodiscard]] bool WriteAll(int fd, const void* bytes, std::size_t length);

/// Waits until the medium that holds a file or directory has it and all that was written there before, so that a power
/// cut takes nothing of it. Other media, which may be slow or dying, are not waited for.
/// @return false when the medium does not take it; what a tool did, or what is gone, is told by other means.
bool SyncMediumOf(const char* path);
