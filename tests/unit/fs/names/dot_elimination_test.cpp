#include "fs/names/dot_elimination.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "util/result.h"

namespace {

constexpr char kRefused[] = "refused";

std::string Eliminated(const std::string& name, std::uint32_t floor) {
  std::string result(8192, '\0');
  const bool done = eliminatePoint(name.c_str(), floor, result.size(), result.data()) == kSuccess;
  return done ? result.c_str() : kRefused;
}

TEST(DotElimination, StopsAtTheFloor) {
  constexpr std::tuple<const char*, std::uint32_t, const char*> kCases[] = {
      {"/a/./b/../c/.", kRootFloor, "/a/c"},
      {"/a/.../..b/", kRootFloor, "/a/.../..b"},
      {"/", kRootFloor, "/"},
      {"/a/b/../..", kRootFloor, "/"},
      {"/..", kRootFloor, kRefused},
      {"/a/../..", kRootFloor, kRefused},
      {"/a//b", kRootFloor, kRefused},
      {"/a//", kRootFloor, kRefused},
      {"//", kRootFloor, kRefused},
      {"./a", kRootFloor, kRefused},
      {"", kRootFloor, kRefused},
      {"/mnt/d:/./a/b/../..", kMediumFloor, "/mnt/d:"},
      {"/mnt/d:/..", kMediumFloor, kRefused},
      {"/mnt/d:/a/../../d:/b", kMediumFloor, kRefused},
      {"/mnt/..", kMediumFloor, kRefused},
  };
  for (const auto& [name, floor, result] : kCases) EXPECT_EQ(Eliminated(name, floor), result) << name;
  std::string longest;
  while (longest.size() < 8190) longest += "/a";
  EXPECT_EQ(Eliminated(longest, kRootFloor), longest);
  EXPECT_EQ(Eliminated(longest + "/a", kRootFloor), kRefused);
}

}  // namespace
