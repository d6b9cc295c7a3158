#include "remote/credentials.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>

#include "remote/ftp.h"
#include "shell/parameter.h"
#include "shell/result.h"
#include "term/line_editor.h"
#include "term/line_state.h"
#include "tests/unit/term/scripted_editor.h"

namespace {

TEST(Credentials, AnSSHUserIsOneWord) {
  const std::string longest(80, 'u');
  const struct {
    std::string keys;
    const char* name;
  } kNames[] = {
      {"root\r", "root"},
      {" root \r", " root "},
      {longest + "u\r", longest.c_str()},  // the 81st rings the bell
      {"-v\r", "-v"},                      // the value of an option, whatever it looks like
      {"\r", nullptr},
      {"  \r", nullptr},
      {"roo\003", nullptr},
      {"root -oProxyCommand=id\r", nullptr},
      {"r\303\266t\r", nullptr},
  };
  for (const auto& c : kNames) {
    ScriptedEditor editor(c.keys);
    ESH_SetPrompt("<boot>");
    EXPECT_STREQ(GetSSHUserName(), c.name) << c.keys;
    EXPECT_EQ(editor.TakeOutput().substr(0, 9), "login as:");
    EXPECT_STREQ(ESH_GetPrompt(), "<boot>");
  }
}

TEST(Credentials, AnFTPPasswordIsAskedForWhateverTheNameIs) {
  const struct {
    const char* keys;
    std::uint32_t verdict;
    const char* shown;
  } kAnswers[] = {
      {"me\rsecret\r", kSuccess, "user:me\r\npassword:******\r\n"},
      {"123456789012345\r123456789012345\r", kSuccess, "user:123456789012345\r\npassword:***************\r\n"},
      {"\003secret\r", ESH_ERR_FAIL, "user:\r\npassword:******\r\n"},
      {"m\003\r", ESH_ERR_FAIL, "user:m\r\npassword:\r\n"},
      {"me\r\003", ESH_ERR_FAIL, "user:me\r\npassword:\r\n"},
      {"me\rse\003", ESH_ERR_FAIL, "user:me\r\npassword:**\r\n"},
      {"me -v\rsecret\r", ESH_ERR_FAIL, "user:me -v\r\npassword:******\r\n"},
      {"me\rpass word\r", ESH_ERR_FAIL, "user:me\r\npassword:*********\r\n"},
  };
  for (const auto& c : kAnswers) {
    ScriptedEditor editor(c.keys);
    EXPECT_EQ(GetFTPUserPassword(), c.verdict) << c.keys;
    EXPECT_EQ(editor.TakeOutput(), c.shown);
    EXPECT_EQ(editor.TakeKeysLeft(), "");
  }
}

bool Holds(const char* buffer, std::size_t room, const std::string& text) {
  return std::search(buffer, buffer + room, text.begin(), text.end()) != buffer + room;
}

TEST(Credentials, ThePasswordIsNowhereAfterItsUse) {
  for (const char* keys : {"me\rsecret\r", "\003secret\r", "me\rsecret\003"}) {
    ScriptedEditor editor(keys);
    ESH_RecordIPv4("127.0.0.1");
    ESH_RecordLocalFile("no-folder/file");
    EXPECT_EQ(ESH_ProcFtpget(), ESH_ERR_FAIL);
    EXPECT_FALSE(Holds(g_szPassword, sizeof(g_szPassword), "sec")) << keys;
    EXPECT_FALSE(Holds(g_stESh_Line.pcBuf, kLineRoom, "ecret")) << keys;
    EXPECT_FALSE(Holds(g_stESh_Line.pcLastBuf, kLineRoom, "ecret")) << keys;
  }
}

}  // namespace
