#include "remote/credentials.h"

#include <cstring>
#include <string_view>

#include "shell/command/parameter.h"
#include "term/line_editor.h"
#include "term/line_state.h"
#include "term/terminal.h"
#include "util/fixed_text.h"
#include "util/result.h"

namespace {

constexpr char kLoginPrompt[] = "login as:";
constexpr char kFTPUserPrompt[] = "user:";
constexpr char kPasswordPrompt[] = "password:";
constexpr std::uint32_t kMaxSSHUser = 80;
constexpr std::uint32_t kMaxFTPWord = 15;

/// Reads a line at a prompt other than the view's. @return the edit buffer.
const char* ReadAtPrompt(const char* prompt, std::uint32_t mode, std::uint32_t max) {
  char view_prompt[kPromptRoom];
  CopyText(view_prompt, ESH_GetPrompt());
  ESH_SetPrompt(prompt);
  const char* line = ESH_LINE_GetLine(mode, max);
  EndTypedLine();
  ESH_SetPrompt(view_prompt);
  return line;
}

/// Tool lines are split at blanks. A name such as "root -oProxyCommand=reboot" would hand ssh options of its own, and
/// with them any command of this device; blanks around the one word are lost on the way and do no harm.
bool IsOneWord(std::string_view text) {
  const std::size_t start = text.find_first_not_of(' ');
  const std::size_t end = text.find_last_not_of(' ');
  return start != std::string_view::npos && text.substr(start, end - start).find(' ') == std::string_view::npos;
}

/// Ctrl+C leaves a byte that is not printable and is refused with it.
bool IsTyped(const char* text, std::uint64_t max) { return ESH_CheckString(text, 1, max + 1) == 1; }

}  // namespace

const char* GetSSHUserName() {
  const char* name = ReadAtPrompt(kLoginPrompt, ESH_LINE_MODE_PLAIN, kMaxSSHUser);
  return IsTyped(name, kMaxSSHUser) && IsOneWord(name) ? name : nullptr;
}

std::uint32_t GetFTPUserPassword() {
  const char* name = ReadAtPrompt(kFTPUserPrompt, ESH_LINE_MODE_PLAIN, kMaxFTPWord);
  const bool has_name = IsTyped(name, kMaxFTPWord) && ESH_RecordUserName(name) == kSuccess;
  const char* password = ReadAtPrompt(kPasswordPrompt, ESH_LINE_MODE_MASKED, kMaxFTPWord);
  const bool has_password = IsTyped(password, kMaxFTPWord) && ESH_RecordPassword(password) == kSuccess;
  ForgetLine();
  return has_name && has_password ? kSuccess : ESH_ERR_FAIL;
}

PasswordForgotten::~PasswordForgotten() { explicit_bzero(g_szPassword, sizeof(g_szPassword)); }
