#pragma once

#include <pthread.h>

#include <atomic>
#include <cstdint>

/// The dots that tell an operator that a long verification is still running. Nobody else may print meanwhile.

/// Ends the dots when it is 1. Written by the shell, read by the thread that prints them.
extern std::atomic<std::uint8_t> g_bEshDone;

/// ESH_PKG_CreateDotThrd's result when there is no thread.
inline constexpr pthread_t kNoThread = static_cast<pthread_t>(-1);

/// Prints what is verified and starts the dots.
/// @param name as typed.
/// @return the thread, which is to be joined, or kNoThread; the verification then runs without dots.
[[nodiscard]] pthread_t ESH_PKG_CreateDotThrd(const char* name);

/// The thread: silent for two seconds, then a dot a second, and "Done." when it is told to end. @return NULL.
void* Esh_ThreadPrintDot(void* unused);

/// Sleeps, also when signals interrupt the sleep.
void ESH_Pkg_NanoSleep(std::uint64_t nanoseconds);
