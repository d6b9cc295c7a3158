#include "tests/support/scripted_stdio.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>

ScriptedStdio::ScriptedStdio(std::string_view keys) : saved_input_(dup(STDIN_FILENO)) {
  const UniqueFile file(tmpfile());
  dup2(fileno(file.get()), STDIN_FILENO);
  (void)!pwrite(STDIN_FILENO, keys.data(), keys.size(), 0);
  testing::internal::CaptureStdout();
}

ScriptedStdio::~ScriptedStdio() {
  const std::string left = testing::internal::GetCapturedStdout();
  dup2(saved_input_.Get(), STDIN_FILENO);
  if (testing::Test::HasFailure())
    std::fputs(left.c_str(), stdout);  // a failed expectation was reported into the kept output
}

std::string ScriptedStdio::TakeOutput() {
  std::string text = testing::internal::GetCapturedStdout();
  testing::internal::CaptureStdout();
  return text;
}
