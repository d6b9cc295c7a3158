#include "pkg/install/progress_dots.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/scripted_stdio.h"

namespace {

constexpr std::uint64_t kTenthOfASecond = 100'000'000;

/// What a verification shows that ends when so many bytes are on the console, or after a time.
std::string ShownUntil(off_t bytes, int tenths) {
  ScriptedStdio stdio;
  g_bEshDone = 0;
  const pthread_t dots = ESH_PKG_CreateDotThrd("p.bin");
  struct stat shown {};
  for (; tenths > 0 && fstat(STDOUT_FILENO, &shown) == 0 && shown.st_size < bytes; --tenths)
    ESH_Pkg_NanoSleep(kTenthOfASecond);
  g_bEshDone = 1;
  pthread_join(dots, nullptr);
  return stdio.TakeOutput();
}

TEST(ProgressDots, BeginWhenAVerificationTakesItsTime) {
  const std::string name = "Verifying the file p.bin ...";
  EXPECT_EQ(ShownUntil(99, 15), name + "Done.\r\n");
  const std::string slow = ShownUntil(static_cast<off_t>(name.size()) + 2, 300);
  EXPECT_TRUE(slow == name + "..Done.\r\n" || slow == name + "...Done.\r\n") << slow;
}

}  // namespace
