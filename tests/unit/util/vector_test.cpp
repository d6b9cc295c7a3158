#include "util/vector.h"

#include <gtest/gtest.h>

namespace {

int g_elements[64];

struct VectorTest : testing::Test {
  UniqueVector vec{VEC_Alloc(8)};

  void Append(std::uint64_t count) {
    for (std::uint64_t i = 0; i < count; ++i) ASSERT_EQ(VEC_Add(vec.get(), kNoIndex, &g_elements[i]), i);
  }
};

TEST_F(VectorTest, GrowsByDoublingAndKeepsDoubleTheRoomItNeeds) {
  Append(9);
  EXPECT_EQ(vec->ulCapacity, 16U);
  for (std::uint64_t i = 9; i-- > 0;) EXPECT_EQ(VEC_Del(vec.get(), i), &g_elements[i]);
  EXPECT_EQ(vec->ulCapacity, 16U);
  EXPECT_EQ(vec->ulMaxIndex, 0U) << "what is walked ends behind the last element";
  EXPECT_EQ(VEC_GetCount(vec.get()), 0U);
  Append(33);
  EXPECT_EQ(VEC_Reduce(vec.get(), 3), 0U);
  EXPECT_EQ(vec->ulCapacity, 16U);
}

TEST_F(VectorTest, AppendFillsTheLowestHoleFirst) {
  Append(4);
  VEC_Del(vec.get(), 2);
  VEC_Del(vec.get(), 1);
  EXPECT_EQ(VEC_Add(vec.get(), 40, &g_elements[0]), 40U);
  EXPECT_EQ(vec->ulCapacity, 64U);
  EXPECT_EQ(VEC_GetCount(vec.get()), 3U);
  for (const std::uint64_t index : {1U, 2U, 4U}) EXPECT_EQ(VEC_Add(vec.get(), kNoIndex, &g_elements[10]), index);
}

TEST_F(VectorTest, RefusesWhatIsNotThere) {
  Append(3);
  EXPECT_EQ(VEC_Del(vec.get(), 3), nullptr);
  EXPECT_EQ(VEC_Del(vec.get(), 1000), nullptr);
  EXPECT_EQ(VEC_Add(vec.get(), kNoIndex - 1, &g_elements[0]), kNoIndex) << "an index that no memory can hold";
  EXPECT_NE(VEC_Resize(vec.get(), (std::uint64_t{1} << 61) + 1), 0U) << "whose size in bytes is 8 again";
  EXPECT_EQ(VEC_GetCount(vec.get()), 3U);
  EXPECT_EQ(VEC_Add(nullptr, 0, &g_elements[0]), kNoIndex);
  const UniqueVector without_array(VEC_Alloc(kNoSlots));
  EXPECT_EQ(VEC_Del(without_array.get(), 0), nullptr);
  EXPECT_EQ(VEC_GetCount(without_array.get()), 0U);
}

}  // namespace
