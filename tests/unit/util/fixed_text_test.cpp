#include "util/fixed_text.h"

#include <gtest/gtest.h>

namespace {

TEST(FixedText, TellsOneCharacterTooManyFromAFullBuffer) {
  FixedText<6> text;
  text.Append("%d-%s", 12, "ab");
  text.AppendText("");
  EXPECT_FALSE(text.Truncated());
  text.AppendText("c");
  EXPECT_TRUE(text.Truncated());
  text.AppendText("");
  EXPECT_TRUE(text.Truncated()) << "once and for all";
  EXPECT_STREQ(text.Text(), "12-ab");
}

TEST(FixedText, CutsEveryWayOfAppendingAtTheRoom) {
  FixedText<6> text;
  text.Append("%s", "1234567");
  EXPECT_EQ(text.View(), "12345");
  EXPECT_TRUE(text.Truncated());
  text.Clear();
  EXPECT_FALSE(text.Truncated());
  text.AppendRepeated('x', 9);
  EXPECT_EQ(text.View(), "xxxxx");
  EXPECT_TRUE(text.Truncated());
}

TEST(FixedText, CopySaysWhetherItWasCut) {
  char buffer[4];
  EXPECT_TRUE(CopyText(buffer, "abc"));
  EXPECT_STREQ(buffer, "abc");
  EXPECT_FALSE(CopyText(buffer, "wxyz"));
  EXPECT_STREQ(buffer, "wxy");
}

}  // namespace
