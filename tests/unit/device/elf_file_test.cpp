#include "device/board/elf_file.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>

namespace {

using device::ReadElfNeeds;

TEST(ElfFile, TellsWhatAProgramNeedsAndNothingOfAnyOtherFile) {
  const std::optional<device::ElfNeeds> needs = ReadElfNeeds("/proc/self/exe");
  ASSERT_TRUE(needs);
  EXPECT_NE(needs->loader.find("/ld-linux"), std::string::npos) << needs->loader;
  EXPECT_EQ(std::count(needs->libraries.begin(), needs->libraries.end(), "libc.so.6"), 1);
  EXPECT_FALSE(ReadElfNeeds("/nonexistent"));
  EXPECT_FALSE(ReadElfNeeds("/etc/passwd"));

  std::string path = testing::TempDir() + "/cut-XXXXXX";
  close(mkstemp(path.data()));
  std::filesystem::copy_file("/proc/self/exe", path, std::filesystem::copy_options::overwrite_existing);
  for (const std::uintmax_t length : {1000U, 600U, 100U, 64U, 63U, 3U}) {
    std::filesystem::resize_file(path, length);
    const auto needs_of_cut = ReadElfNeeds(path);
    EXPECT_TRUE(!needs_of_cut || needs_of_cut->libraries.empty()) << "cut at " << length;
  }
  std::filesystem::remove(path);
}

}  // namespace
