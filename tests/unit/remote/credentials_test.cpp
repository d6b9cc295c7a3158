#include "remote/credentials.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "remote/ftp.h"
#include "shell/parameter.h"
#include "shell/result.h"
#include "term/line_state.h"
#include "tests/unit/term/scripted_editor.h"

namespace {

TEST(Credentials, AnSSHUserIsOneWord) {
  const std::string longest(80, 'u');
  const struct {
    std::string keys;
    const char* name;
  } kNames[] = {
      {longest + "u\r", longest.c_str()},  // the 81st rings the bell
      {"-v\r", "-v"},                      // the value of an option, whatever it looks like
      {"  \r", nullptr},
      {"root -oProxyCommand=id\r", nullptr},
      {"r\303\266t\r", nullptr},
  };
  for (const auto& c : kNames) {
    const ScriptedEditor editor(c.keys);
    EXPECT_STREQ(GetSSHUserName(), c.name) << c.keys;
  }
}

bool Holds(const char* buffer, std::size_t room, std::string_view text) {
  return std::string_view(buffer, room).find(text) != std::string_view::npos;
}

TEST(Credentials, ThePasswordIsNowhereAfterItsUse) {
  for (const char* keys : {"me\rsecret\r", "\003secret\r", "me\rsecret\003"}) {
    const ScriptedEditor editor(keys);
    ESH_RecordIPv4("127.0.0.1");
    ESH_RecordLocalFile("no-folder/file");
    EXPECT_EQ(ESH_ProcFtpget(), ESH_ERR_FAIL);
    EXPECT_FALSE(Holds(g_szPassword, sizeof(g_szPassword), "sec")) << keys;
    EXPECT_FALSE(Holds(g_stESh_Line.pcBuf, kLineRoom, "ecret")) << keys;
    EXPECT_FALSE(Holds(g_stESh_Line.pcLastBuf, kLineRoom, "ecret")) << keys;
  }
}

}  // namespace
