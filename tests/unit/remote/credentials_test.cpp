#include "remote/credentials.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>

#include "remote/remote_commands.h"
#include "shell/command/parameter.h"
#include "term/line_state.h"
#include "tests/unit/term/scripted_editor.h"
#include "util/result.h"

namespace {

TEST(Credentials, AnSSHUserIsOneWord) {
  const std::string longest(80, 'u');
  const std::pair<std::string, const char*> names[] = {
      {longest + "u\r", longest.c_str()},  // the 81st rings the bell
      {"-v\r", "-v"},                      // the value of an option, whatever it looks like
      {"  \r", nullptr},
      {"root -oProxyCommand=id\r", nullptr},
      {"r\303\266t\r", nullptr},
  };
  for (const auto& [keys, name] : names) {
    const ScriptedEditor editor(keys);
    EXPECT_STREQ(GetSSHUserName(), name) << keys;
  }
}

TEST(Credentials, ThePasswordIsNowhereAfterItsUse) {
  for (const char* keys : {"me\rsecret\r", "\003secret\r", "me\rsecret\003"}) {
    const ScriptedEditor editor(keys);
    ESH_RecordIPv4("127.0.0.1");
    ESH_RecordLocalFile("no-folder/file");
    EXPECT_EQ(ESH_ProcFtpget(), ESH_ERR_FAIL);
    for (const std::string_view buffer :
         {std::string_view(g_szPassword, sizeof(g_szPassword)), std::string_view(g_stESh_Line.pcBuf, kLineRoom),
          std::string_view(g_stESh_Line.pcLastBuf, kLineRoom)})
      EXPECT_EQ(buffer.find("ecre"), std::string_view::npos) << keys;
  }
}

}  // namespace
