#include "util/fixed_text.h"

#include <gtest/gtest.h>

namespace {

TEST(FixedText, TellsOneCharacterTooManyFromAFullBuffer) {
  FixedText<6> text;
  text.Append("%d-%s", 12, "ab");
  EXPECT_FALSE(text.Truncated());
  EXPECT_EQ(text.View(), "12-ab");
  text.AppendText("");
  EXPECT_FALSE(text.Truncated());
  text.AppendText("c");
  EXPECT_TRUE(text.Truncated());
  EXPECT_STREQ(text.Text(), "12-ab");
  text.Clear();
  EXPECT_FALSE(text.Truncated());
}

TEST(FixedText, CutsEveryWayOfAppendingAtTheRoom) {
  FixedText<6> text;
  text.Append("%s", "1234567");
  EXPECT_EQ(text.View(), "12345");
  EXPECT_TRUE(text.Truncated());
  text.Clear();
  text.AppendText("123");
  text.AppendRepeated('x', 9);
  EXPECT_EQ(text.View(), "123xx");
  EXPECT_TRUE(text.Truncated());
  text.Append("%s", "y");
  EXPECT_EQ(text.Length(), 5U) << "a full text stays as it is";
}

TEST(FixedText, CopySaysWhetherItWasCut) {
  char buffer[4];
  EXPECT_TRUE(CopyText(buffer, "abc"));
  EXPECT_STREQ(buffer, "abc");
  EXPECT_FALSE(CopyText(buffer, "abcd"));
  EXPECT_STREQ(buffer, "abc");
  EXPECT_TRUE(CopyText(buffer, ""));
  EXPECT_STREQ(buffer, "");
}

}  // namespace
