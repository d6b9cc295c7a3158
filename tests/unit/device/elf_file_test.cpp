#include "device/board/elf_file.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

namespace {

using device::ElfNeeds;
using device::ReadElfNeeds;

TEST(ElfFile, TellsWhatAProgramNeeds) {
  const std::optional<ElfNeeds> needs = ReadElfNeeds("/proc/self/exe");
  ASSERT_TRUE(needs);
  EXPECT_NE(needs->loader.find("/ld-linux"), std::string::npos) << needs->loader;
  EXPECT_NE(std::find(needs->libraries.begin(), needs->libraries.end(), "libc.so.6"), needs->libraries.end());
}

TEST(ElfFile, ACutOrForeignFileNeedsNothing) {
  EXPECT_FALSE(ReadElfNeeds("/nonexistent"));
  EXPECT_FALSE(ReadElfNeeds("/etc/passwd"));

  std::ifstream whole("/proc/self/exe", std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(whole), std::istreambuf_iterator<char>()};
  const std::string path = testing::TempDir() + "/cut-" + std::to_string(getpid());
  for (const std::size_t length : {3, 63, 64, 100, 600, 1000}) {
    std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(length));
    const std::optional<ElfNeeds> needs = ReadElfNeeds(path);
    EXPECT_TRUE(!needs || needs->libraries.empty()) << "cut at " << length;
  }
  (void)std::remove(path.c_str());
}

}  // namespace
