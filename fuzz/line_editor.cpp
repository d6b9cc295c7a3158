#include "term/line_editor.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

#include "fuzz/require.h"
#include "term/history.h"
#include "term/line_state.h"
#include "util/unique_handle.h"

namespace {

/// Ends a read of any kind, also out of the middle of an escape sequence: an empty try ends that.
constexpr char kEndOfLine[] = "\0\0\0n\r\0\0n\r\0\0\r\3";

/// Standard input is a file of keys, standard output goes nowhere.
int SetUp() {
  setenv("TERM", "xterm", 1);
  const UniqueFd keys(memfd_create("keys", MFD_CLOEXEC));
  const UniqueFd nowhere(open("/dev/null", O_WRONLY | O_CLOEXEC));
  Require(dup2(keys.Get(), STDIN_FILENO) == STDIN_FILENO && dup2(nowhere.Get(), STDOUT_FILENO) == STDOUT_FILENO);
  Require(ESH_HIS_Init() == 0 && ESH_LINE_Init() == 0);
  ESH_SetPrompt("<boot>");
  return 0;
}

void TypeKeys(const std::uint8_t* data, std::size_t size) {
  Require(ftruncate(STDIN_FILENO, 0) == 0 && lseek(STDIN_FILENO, 0, SEEK_SET) == 0);
  Require(write(STDIN_FILENO, data, size) == static_cast<ssize_t>(size));
  for (int i = 0; i < 4; ++i) Require(write(STDIN_FILENO, kEndOfLine, sizeof(kEndOfLine)) == sizeof(kEndOfLine));
  lseek(STDIN_FILENO, 0, SEEK_SET);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const int ready = SetUp();
  (void)ready;
  if (size == 0) return 0;
  const std::uint32_t mode = data[0] % 4;
  const std::uint32_t max = 1 + data[0] / 4;
  TypeKeys(data + 1, size - 1);
  if (mode == ESH_LINE_MODE_COMMAND) {
    (void)ESH_LINE_GetCmdLine();
    Require(g_stESh_Line.ulLen <= kMaxCommandLine);
  } else {
    (void)ESH_LINE_GetLine(mode, max);
    Require(g_stESh_Line.ulLen <= max);
  }
  Require(g_stESh_Line.ulCursor <= g_stESh_Line.ulLen);
  Require(std::strlen(g_stESh_Line.pcBuf) < kLineRoom);
  return 0;
}
