#include "term/key_handlers.h"

#include <gtest/gtest.h>

#include <cstring>

#include "term/line_state.h"

namespace {

struct DeletionCase {
  std::uint64_t a;
  std::uint64_t b;
  const char* left;
};

TEST(DeleteText, TakesBothEndsInEitherOrder) {
  char buffer[kLineRoom];
  g_stESh_Line.pcBuf = buffer;
  constexpr DeletionCase kDeletions[] = {{0, 0, "bcdef"}, {5, 5, "abcde"}, {1, 3, "aef"}, {3, 1, "aef"}, {0, 5, ""}};
  for (const DeletionCase& c : kDeletions) {
    std::strcpy(buffer, "abcdef");
    g_stESh_Line.ulLen = 6;
    EXPECT_EQ(LINE_DeleteText(c.a, c.b), 1);
    EXPECT_STREQ(buffer, c.left);
    EXPECT_EQ(g_stESh_Line.ulLen, std::strlen(c.left));
  }
  g_stESh_Line.pcBuf = nullptr;
}

}  // namespace
