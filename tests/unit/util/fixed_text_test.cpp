#include "util/fixed_text.h"

#include <gtest/gtest.h>

namespace {

TEST(FixedText, CutsEveryWayOfAppendingAtTheRoomAndTells) {
  using Step = void (*)(TextBuilder & text);
  const struct {
    Step append;
    const char* text;
    bool is_truncated;
  } cases[] = {
      {[](TextBuilder& text) { text.Append("%d-%s", 1, "ab"); }, "x1-ab", false},
      {[](TextBuilder& text) { text.Append("%s", "12345"); }, "x1234", true},
      {[](TextBuilder& text) { text.AppendText("1234"); }, "x1234", false},
      {[](TextBuilder& text) { text.AppendText("12345"); }, "x1234", true},
      {[](TextBuilder& text) { text.AppendRepeated('y', 4); }, "xyyyy", false},
      {[](TextBuilder& text) { text.AppendRepeated('y', 9); }, "xyyyy", true},
  };
  FixedText<6> text;
  for (const auto& c : cases) {
    text.Clear();
    text.AppendText("x");
    c.append(text);
    EXPECT_STREQ(text.Text(), c.text);
    EXPECT_EQ(text.Truncated(), c.is_truncated) << c.text;
    text.AppendText("");
    EXPECT_EQ(text.Truncated(), c.is_truncated) << c.text << " stays as it is";
    text.Append("%s", "z");
    EXPECT_EQ(text.View(), c.text) << "a full text stays as it is";
    EXPECT_TRUE(text.Truncated());
  }
}

TEST(FixedText, CopySaysWhetherItWasCut) {
  char buffer[4];
  EXPECT_TRUE(CopyText(buffer, "abc"));
  EXPECT_STREQ(buffer, "abc");
  EXPECT_FALSE(CopyText(buffer, "wxyz"));
  EXPECT_STREQ(buffer, "wxy");
}

}  // namespace
