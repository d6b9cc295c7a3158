#include "util/fixed_text.h"

#include <gtest/gtest.h>

namespace {

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
