#include "pkg/install/progress_dots.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/scripted_stdio.h"

namespace {

constexpr std::uint64_t kTenthOfASecond = 100'000'000;

TEST(ProgressDots, BeginWhenAVerificationTakesItsTime) {
  const std::string name = "Verifying the file p.bin ...";
  ScriptedStdio stdio;
  struct stat shown {};
  const auto wait_for = [&](std::size_t bytes, int tenths) {
    for (; tenths > 0 && fstat(STDOUT_FILENO, &shown) == 0 && shown.st_size < static_cast<off_t>(bytes); --tenths)
      ESH_Pkg_NanoSleep(kTenthOfASecond);
    return static_cast<std::size_t>(shown.st_size);
  };
  g_bEshDone = 0;
  const pthread_t dots = ESH_PKG_CreateDotThrd("p.bin");
  EXPECT_EQ(wait_for(99, 15), name.size());
  (void)wait_for(name.size() + 2, 300);
  g_bEshDone = 1;
  pthread_join(dots, nullptr);
  const std::string slow = stdio.TakeOutput();
  EXPECT_TRUE(slow == name + "..Done.\r\n" || slow == name + "...Done.\r\n") << slow;
}

}  // namespace
