#pragma once

#include <cstdint>

/// Makes the console that the device's configuration names the controlling terminal and the shell's input, output
/// and error output. @return 0, or ESH_ERR_FAIL: the shell then goes on with the descriptors it inherited.
[[nodiscard]] std::uint32_t AttachConsole();
