#include <gtest/gtest.h>

#include <cstdio>
#include <string>

namespace {

/// The program behind ./run.
using NativeRelay = testing::Test;

TEST_F(NativeRelay, TypesALineOfAPipeWheneverTheConsoleWaits) {
  const std::string command =
      std::string("printf 'dir\\nreboot\\nn\\nsystem-view' | timeout 200 ") + ESH_DEVICE_PROGRAM;
  std::FILE* pipe = popen(command.c_str(), "r");  // NOLINT(cert-env33-c): as an operator would pipe
  ASSERT_NE(pipe, nullptr);
  std::string printed;
  for (int byte = 0; (byte = std::getc(pipe)) != EOF;) printed += static_cast<char>(byte);
  EXPECT_EQ(pclose(pipe), 0);
  EXPECT_NE(printed.find("Directory of flash:"), std::string::npos);
  EXPECT_NE(printed.find("System View"), std::string::npos) << printed;
}

}  // namespace
