#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "fs/file_commands.h"
#include "fs/file_messages.h"
#include "fs/names/name_rules.h"
#include "fs/path.h"
#include "shell/command/parameter.h"
#include "term/pager.h"
#include "util/result.h"
#include "util/unique_handle.h"

namespace {

constexpr char kNotText[] = "Not a text file.\r";
constexpr std::size_t kChunk = 1023;
constexpr std::size_t kReadAtOnce = 32 * kChunk;  // or each chunk would cost a system call

bool HasHighBit(char byte) { return isascii(static_cast<unsigned char>(byte)) == 0; }

/// A text has no byte above ASCII and no two NUL bytes in a row.
bool IsText(std::string_view chunk) {
  return std::none_of(chunk.begin(), chunk.end(), HasHighBit) &&
         chunk.find(std::string_view("\0\0", 2)) == std::string_view::npos;
}

/// Appends a chunk up to its first NUL byte. @param last where the text ends at the latest. @return its new end.
char* AppendChunk(char* end, const char* last, std::string_view chunk) {
  const std::size_t length = std::min(chunk.find('\0'), std::min(chunk.size(), static_cast<std::size_t>(last - end)));
  std::memcpy(end, chunk.data(), length);
  return end + length;
}

/// Reads a file of known size into `text`, chunk by chunk; what follows a NUL byte inside a chunk is dropped. Only
/// the first chunk is asked whether it is text.
/// @param room size of `text` in bytes. A file that grows meanwhile is shown up to there.
void ReadText(int file, char* text, std::size_t room) {
  char block[kReadAtOnce];
  char* end = text;
  const char* const last = text + room - 1;
  bool first = true;
  for (ssize_t length = 0; (length = read(file, block, sizeof(block))) > 0; first = false) {
    const std::string_view bytes(block, static_cast<std::size_t>(length));
    if (first && !IsText(bytes.substr(0, kChunk))) {
      std::puts(kNotText);
      break;
    }
    for (std::size_t at = 0; at < bytes.size(); at += kChunk) end = AppendChunk(end, last, bytes.substr(at, kChunk));
  }
  *end = '\0';
}

}  // namespace

std::uint32_t ESH_ProcMore() {
  char full[kNameRoom];
  struct stat status {};
  if (ESH_InputName2FullValidName(g_szSourceFile, 1, sizeof(full), full) != kSuccess || stat(full, &status) != 0 ||
      S_ISDIR(status.st_mode) || status.st_size < 1)  // a fifo has no size, so it is never waited on
    return Refuse(kDoesNotExist);
  const UniqueFd file(open(full, O_RDONLY | O_CLOEXEC));
  if (!file) return Refuse(kExecutionFailure);
  const std::size_t room = static_cast<std::size_t>(status.st_size) + 1;
  const UniqueText text(static_cast<char*>(std::malloc(room)));
  if (text == nullptr) return kSuccess;
  ReadText(file.Get(), text.get(), room);
  (void)ESH_OutString(text.get());  // a reader who has seen enough is no failure
  return kSuccess;
}
