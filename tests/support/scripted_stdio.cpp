#include "tests/support/scripted_stdio.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>

namespace {

/// Reads what follows the descriptor's position.
std::string Rest(int fd) {
  std::string text;
  char buffer[4096];
  for (ssize_t count = 0; (count = read(fd, buffer, sizeof(buffer))) > 0;)
    text.append(buffer, static_cast<std::size_t>(count));
  return text;
}

}  // namespace

ScriptedStdio::ScriptedStdio(std::string_view keys)
    : saved_input_(dup(STDIN_FILENO)), saved_output_(dup(STDOUT_FILENO)), keys_(tmpfile()), output_(tmpfile()) {
  std::fflush(stdout);
  (void)!write(fileno(keys_.get()), keys.data(), keys.size());
  lseek(fileno(keys_.get()), 0, SEEK_SET);
  dup2(fileno(keys_.get()), STDIN_FILENO);
  dup2(fileno(output_.get()), STDOUT_FILENO);
}

ScriptedStdio::~ScriptedStdio() {
  const std::string left = TakeOutput();
  dup2(saved_input_.Get(), STDIN_FILENO);
  dup2(saved_output_.Get(), STDOUT_FILENO);
  if (testing::Test::HasFailure())
    std::fputs(left.c_str(), stdout);  // a failed expectation was reported into the kept output
}

std::string ScriptedStdio::TakeOutput() {
  std::fflush(stdout);
  lseek(STDOUT_FILENO, 0, SEEK_SET);
  std::string text = Rest(STDOUT_FILENO);
  lseek(STDOUT_FILENO, 0, SEEK_SET);
  (void)!ftruncate(STDOUT_FILENO, 0);
  return text;
}

std::string ScriptedStdio::TakeKeysLeft() { return Rest(STDIN_FILENO); }
