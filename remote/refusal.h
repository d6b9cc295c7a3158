#pragma once

#include <cstdint>
#include <optional>

/// What a step on the way to a connection or transfer decides: nothing while the command goes on, otherwise the
/// command's result, which ends it there.
using Refusal = std::optional<std::uint32_t>;
