#include "util/vector.h"

#include <gtest/gtest.h>

namespace {

TEST(Vector, AppendFillsTheLowestHoleFirst) {
  int elements[6];
  const UniqueVector vec(VEC_Alloc(kUsualSlots));
  for (int& element : elements) VEC_Add(vec.get(), kNoIndex, &element);
  for (const std::uint64_t index : {2U, 1U}) EXPECT_EQ(VEC_Del(vec.get(), index), &elements[index]);
  EXPECT_EQ(VEC_Add(vec.get(), 40, &elements[0]), 40U);
  for (const std::uint64_t index : {1U, 2U, 6U}) EXPECT_EQ(VEC_Add(vec.get(), kNoIndex, &elements[0]), index);
}

}  // namespace
