#include <gtest/gtest.h>

#include <string_view>

#include "remote/remote_commands.h"
#include "shell/command/parameter.h"
#include "term/line_state.h"
#include "tests/unit/term/scripted_editor.h"
#include "util/result.h"

namespace {

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
