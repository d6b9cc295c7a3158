#include <gtest/gtest.h>

#include "util/fixed_text.h"
#include "util/vector.h"

namespace {

struct Vector : testing::Test {
  Vector() {
    for (int& element : elements) VEC_Add(vec.get(), kNoIndex, &element);
  }
  int elements[9];
  UniqueVector vec{VEC_Alloc(kUsualSlots)};
};

TEST_F(Vector, AppendFillsTheLowestHoleFirst) {
  for (const std::uint64_t index : {2U, 1U}) EXPECT_EQ(VEC_Del(vec.get(), index), &elements[index]);
  EXPECT_EQ(VEC_Add(vec.get(), 40, &elements[0]), 40U);
  EXPECT_EQ(vec->ulCapacity, 64U);
  EXPECT_EQ(VEC_Del(vec.get(), 40), &elements[0]);
  EXPECT_EQ(vec->ulCapacity, 16U) << "twice what eight slots and one more call for";
  for (const std::uint64_t index : {1U, 2U, 9U}) EXPECT_EQ(VEC_Add(vec.get(), kNoIndex, &elements[0]), index);
}

TEST_F(Vector, RefusesWhatIsNotThere) {
  for (const std::uint64_t index : {9U, 1000U}) EXPECT_EQ(VEC_Del(vec.get(), index), nullptr);
  EXPECT_EQ(VEC_Add(vec.get(), kNoIndex - 1, &elements[0]), kNoIndex) << "an index that no memory can hold";
  EXPECT_NE(VEC_Resize(vec.get(), (std::uint64_t{1} << 61) + 1), 0U) << "whose size in bytes is 8 again";
  EXPECT_EQ(VEC_GetCount(vec.get()), 9U);
  EXPECT_EQ(VEC_Add(nullptr, 0, &elements[0]), kNoIndex);
}

TEST(FixedText, CutsEveryWayOfAppendingAtTheRoomAndSaysSo) {
  FixedText<6> text;
  text.Append("%d-%s", 12, "ab");
  text.AppendText("");
  EXPECT_FALSE(text.Truncated()) << "full, and not too full";
  text.AppendText("c");
  text.AppendText("");
  EXPECT_TRUE(text.Truncated()) << "once and for all";
  EXPECT_STREQ(text.Text(), "12-ab");
  text.Clear();
  text.AppendRepeated('x', 9);
  EXPECT_EQ(text.View(), "xxxxx");
  EXPECT_TRUE(text.Truncated());
}

}  // namespace
