#include "pkg/install/progress_dots.h"

#include <chrono>
#include <cstdio>
#include <thread>

#include "term/terminal.h"

std::atomic<std::uint8_t> g_bEshDone{0};

namespace {

constexpr char kVerifying[] = "Verifying the file %s ...";
constexpr char kDone[] = "Done.\r\n";
constexpr std::uint64_t kNanosecondsPerSecond = 1000000000;
constexpr std::uint64_t kSilentStep = kNanosecondsPerSecond / 10;
constexpr unsigned kSilentSteps = 20;

}  // namespace

pthread_t ESH_PKG_CreateDotThrd(const char* name) {
  std::printf(kVerifying, name);
  ESH_TERM_OFlush();
  pthread_t thread{};
  return pthread_create(&thread, nullptr, Esh_ThreadPrintDot, nullptr) == 0 ? thread : kNoThread;
}

void* Esh_ThreadPrintDot(void* /*unused*/) {
  for (unsigned step = 0; step < kSilentSteps && g_bEshDone == 0; ++step) ESH_Pkg_NanoSleep(kSilentStep);
  while (g_bEshDone == 0) {
    ESH_Pkg_NanoSleep(kNanosecondsPerSecond);
    std::printf(".");
    ESH_TERM_OFlush();
  }
  std::printf(kDone);
  return nullptr;
}

void ESH_Pkg_NanoSleep(std::uint64_t nanoseconds) {
  std::this_thread::sleep_for(std::chrono::nanoseconds(nanoseconds));
}
