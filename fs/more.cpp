#include "fs/more.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "fs/file_messages.h"
#include "fs/name_rules.h"
#include "fs/path.h"
#include "shell/parameter.h"
#include "shell/result.h"
#include "term/pager.h"
#include "util/fixed_text.h"
#include "util/unique_handle.h"

namespace {

constexpr char kNotText[] = "Not a text file.\r";
constexpr std::size_t kChunk = 1023;

bool HasHighBit(char byte) { return static_cast<unsigned char>(byte) >= 0x80; }

/// A text has no byte above ASCII and no two NUL bytes in a row.
bool IsText(std::string_view chunk) {
  return std::none_of(chunk.begin(), chunk.end(), HasHighBit) &&
         chunk.find(std::string_view("\0\0", 2)) == std::string_view::npos;
}

/// Reads a file of known size into `text`, chunk by chunk; what follows a NUL byte inside a chunk is dropped. Only
/// the first chunk is asked whether it is text.
/// @param room size of `text` in bytes. A file that grows meanwhile is shown up to there.
void ReadText(int file, char* text, std::size_t room) {
  char chunk[kChunk];
  std::size_t end = 0;  // remembered: looking for it before every chunk costs the square of the file's size
  text[0] = '\0';
  for (bool first = true;; first = false) {
    const ssize_t length = read(file, chunk, sizeof(chunk));
    if (length <= 0) {
      return;
    }
    const std::string_view bytes(chunk, static_cast<std::size_t>(length));
    if (first && !IsText(bytes)) {
      std::puts(kNotText);
      return;
    }
    const std::string_view piece = bytes.substr(0, std::min(bytes.find('\0'), room - 1 - end));
    CopyBounded(text + end, room - end, piece);
    end += piece.size();
  }
}

}  // namespace

std::uint32_t ESH_ProcMore() {
  char full[kNameRoom];
  struct stat status {};
  if (ESH_InputName2FullValidName(g_szSourceFile, 1, sizeof(full), full) != kSuccess || stat(full, &status) != 0 ||
      S_ISDIR(status.st_mode) || status.st_size < 1) {  // a fifo has no size, so it is never waited on
    return Refuse(kDoesNotExist);
  }
  const UniqueFd file(open(full, O_RDONLY | O_CLOEXEC));
  if (!file) {
    return Refuse(kExecutionFailure);
  }
  const std::size_t room = static_cast<std::size_t>(status.st_size) + 1;
  const UniqueText text(static_cast<char*>(std::malloc(room)));
  if (text == nullptr) {
    return kSuccess;
  }
  ReadText(file.Get(), text.get(), room);
  (void)ESH_OutString(text.get());  // a reader who has seen enough is no failure
  return kSuccess;
}
