#include <fcntl.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include "fuzz/require.h"
#include "net/network_commands.h"
#include "remote/remote_commands.h"
#include "shell/command/command_tree.h"
#include "shell/command/view.h"
#include "shell/parser.h"
#include "shell/startup.h"
#include "term/help/completion.h"
#include "term/help/help_list.h"
#include "term/line_editor.h"
#include "term/line_state.h"
#include "util/result.h"
#include "util/unique_handle.h"
#include "util/vector.h"

namespace {

/// Bytes that end a line: Enter, TAB, "?" and Ctrl+Z.
constexpr std::string_view kEndKeys = "\r\t?\x1a";

std::uint32_t DoNothing() { return kSuccess; }

/// Names that share a beginning, one that is as long as the room for it, and what is typed itself.
std::uint32_t OfferNames(const char* word, VEC_S* list, const ESH_CMD_ELEMENT_S* /*element*/) {
  const std::string typed(word);
  for (const std::string& name : {typed, typed + "a.bin", typed + "a/", typed + std::string(kHelpRoom, 'n')})
    (void)ESH_NewHelpInfo(name.c_str(), name.c_str(), list);
  return kSuccess;
}

/// Commands do nothing, and help offers no files: the machine's own are left alone.
void Disarm(const ESH_VIEW_S& view) {
  ForEachSlot<ESH_CMD_THREAD_S>(
      *view.pstCmdVec,
      [](std::uint64_t, ESH_CMD_THREAD_S& thread) {
        thread.pfnProc = DoNothing;
        for (ESH_CMD_ELEMENT_S* element = FirstElement(thread); element != nullptr && element->ulType != ESH_ELEM_CR;
             element = NextElement(thread, *element))
          if (element->pfnHelp != nullptr) element->pfnHelp = OfferNames;
      });
}

/// The shell's commands, in the views of a device that has an IP stack.
int SetUp() {
  setenv("TERM", "xterm", 1);
  const UniqueFd nowhere(open("/dev/null", O_WRONLY | O_CLOEXEC));
  Require(dup2(nowhere.Get(), STDOUT_FILENO) == STDOUT_FILENO && ESH_LINE_Init() == 0);
  ESH_View_Init();
  ESH_CMD_Init();
  ESH_Network_Init();
  ESH_Protocol_Init();
  for (const ESH_VIEW_S* view : {g_pstEshUserView, g_pstEshSysView, g_pstEshMthView}) Disarm(*view);
  return 0;
}

/// @return the length of the line that is left in the editor.
std::size_t Press(char key, char* line) {
  const std::size_t length = std::strlen(line);
  const bool ends = kEndKeys.find(key) != std::string_view::npos;
  if (!ends && (key < ' ' || length == kMaxCommandLine)) return length;
  line[length] = key;
  line[length + 1] = '\0';
  if (!ends) return length + 1;
  ESH_CmdParser(line);
  if (key == '\r' || key == kEndKeys.back()) line[0] = '\0';
  return std::strlen(line);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const int ready = SetUp();
  (void)ready;
  if (size == 0) return 0;
  ESH_VIEW_S* const views[] = {g_pstEshUserView, g_pstEshSysView, g_pstEshMthView};
  ESH_SetCmdMode(views[data[0] % 3]);
  ESH_ResetTabState();
  g_stESh_Line.pcBuf[0] = '\0';
  for (std::size_t i = 1; i < size; ++i)
    Require(Press(static_cast<char>(data[i]), g_stESh_Line.pcBuf) <= kMaxCommandLine);
  return 0;
}
