#include <optional>
#include <utility>

#include "tests/device/operator_console.h"

namespace {

/// With terminals of which the emulated machine knows nothing.
class NativeCommandLine : public OperatorConsole {};

TEST_F(NativeCommandLine, IsThereOnEveryTerminal) {
  const std::pair<std::optional<std::string>, const char*> kTerminals[] = {
      {std::nullopt, "Terminal type \"\" is unknown, \"vt100\" is used instead.\n"},
      {"nonsense", "Terminal type \"nonsense\" is unknown, \"vt100\" is used instead.\n"},
  };
  options.columns = options.rows = 0;
  for (const auto& [term, notice] : kTerminals) {
    options.term = term;
    NewDevice();
    Boot();
    EXPECT_NE(Expect("<boot>").find(notice), std::string::npos);
    Type("pwx\177d\r");
    Expect("flash:\r\r\n");
  }
}

}  // namespace
