#include "fs/dot_elimination.h"

#include <gtest/gtest.h>

#include <string>

#include "shell/result.h"

namespace {

TEST(DotElimination, StopsAtTheFloor) {
  const auto eliminated = [](const char* name, std::uint32_t floor) {
    char result[64];
    return std::string(eliminatePoint(name, floor, sizeof(result), result) == kSuccess ? result : "refused");
  };
  EXPECT_EQ(eliminated("/a/./b/../c/.", kRootFloor), "/a/c");
  EXPECT_EQ(eliminated("/a/.../..b/", kRootFloor), "/a/.../..b");
  EXPECT_EQ(eliminated("/mnt/d:/./a/b/../..", kMediumFloor), "/mnt/d:");
  for (const char* root : {"/", "/.", "/a/..", "/a/b/../.."}) {
    EXPECT_EQ(eliminated(root, kRootFloor), "/") << root;
  }
  for (const char* name : {"/..", "/a/../..", "/a//b", "/a//", "//", "./a", ""}) {
    EXPECT_EQ(eliminated(name, kRootFloor), "refused") << name;
  }
  for (const char* name : {"/mnt/d:/..", "/mnt/d:/a/../../d:/b", "/mnt/.."}) {
    EXPECT_EQ(eliminated(name, kMediumFloor), "refused") << name;
  }
}

TEST(DotElimination, HoldsAllComponentsOfTheLongestName) {
  std::string name;
  while (name.size() < 8190) {
    name += "/a";
  }
  std::string result(8192, '\0');
  EXPECT_EQ(eliminatePoint(name.c_str(), kRootFloor, result.size(), result.data()), kSuccess);
  EXPECT_STREQ(result.c_str(), name.c_str());
  name += "/a";
  EXPECT_EQ(eliminatePoint(name.c_str(), kRootFloor, result.size(), result.data()), ESH_ERR_FAIL);
}

}  // namespace
