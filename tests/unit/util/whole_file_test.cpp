#include "util/whole_file.h"

#include "tests/support/private_root.h"
#include "util/unique_handle.h"

namespace {

struct WholeFile : PrivateRootTest {};

TEST_F(WholeFile, IsTerminated) {
  WriteFile("/etc/text", "abc");
  WriteFile("/etc/empty", "");
  std::size_t size = 0;
  const UniqueText text(FileReadWhole("/etc/text", &size));
  ASSERT_NE(text, nullptr);
  EXPECT_STREQ(text.get(), "abc");
  EXPECT_EQ(size, 3U);
  for (const char* none : {"/etc/empty", "/etc/none", "/etc"}) {
    EXPECT_EQ(FileReadWhole(none, &size), nullptr) << none;
    EXPECT_EQ(size, 0U);
  }
}

}  // namespace
