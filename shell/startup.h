#pragma once

#include <cstdint>

/// 1 when the shell was started by the command daemon, with the single argument "scmd"; else 0.
extern std::uint8_t g_bIsLoadFromScmd;

/// The shell's life from the fork on: starts up, then reads and runs command lines for ever; or reboots the device
/// when a step that counts failed.
[[noreturn]] void RunShell();

/// @return 1 when the add-on module is loaded, else 0.
[[nodiscard]] std::uint16_t HasLoadedKo();

/// The shell's SIGINT handler: passes the signal to a running tool. Ctrl+C never ends the shell.
void ESH_SigInt(int signo);

/// Registers every command, family by family: the order in which help and completion show them.
void ESH_CMD_Init();

/// Chooses the first working directory. @return 0 or a failure code.
std::uint32_t ESH_FsPwd_Init();
