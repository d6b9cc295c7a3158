#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <utility>

#include "fs/file_commands.h"
#include "fs/file_messages.h"
#include "fs/named_file.h"
#include "shell/command/parameter.h"
#include "term/prompts.h"
#include "util/result.h"
#include "util/unique_handle.h"

namespace {

constexpr char kSameFile[] = "The destination file can't be the same as the source file.\r";
constexpr char kCopyQuestion[] = "Copy %s to %s?[Y/N]:";
constexpr char kCopied[] = "Start to copy %s to %s... Done.\r\n";

/// A link counts for itself: it would be replaced, not followed.
bool EntryExists(const char* full) {
  struct stat status {};
  return lstat(full, &status) == 0;
}

/// Copies until a read brings nothing more. A read error ends the copy like the end of the file does.
/// @return false when a write came up short.
bool CopyBlocks(int source, int destination) {
  char block[32768];
  for (;;) {
    const ssize_t length = read(source, block, sizeof(block));
    if (length <= 0) return true;
    if (write(destination, block, static_cast<std::size_t>(length)) != length) return false;
  }
}

/// Pushes the data out to the medium. A full medium often shows only here.
bool CloseSynced(UniqueFd file) { return fsync(file.Get()) == 0 && close(file.Release()) == 0; }

bool CopyFile(const char* source_name, const char* destination_name, mode_t mode) {
  UniqueFd destination(creat(destination_name, mode));
  const UniqueFd source(open(source_name, O_RDONLY | O_CLOEXEC));
  return destination && source && CopyBlocks(source.Get(), destination.Get()) && CloseSynced(std::move(destination));
}

/// Asks when the destination exists. @return false when the user keeps it.
bool MayWrite(const NamedFile& destination) {
  if (!EntryExists(destination.full)) return true;
  std::printf(kOverwriteQuestion, destination.display);
  return IsConfirmed();
}

std::uint32_t FailWithoutRoom(const NamedFile& destination) {
  SyncMedia(destination.full);
  return Refuse(kNoRoom);
}

}  // namespace

std::uint32_t ESH_ProcCopy() {
  NamedFile source;
  NamedFile destination;
  struct stat status {};
  if (!ResolveTransfer(g_szSourceFile, g_szDestFile, source, destination, status)) return Refuse(kDoesNotExist);
  if (IsSameEntry(source.full, destination.full)) return Refuse(kSameFile);
  std::printf(kCopyQuestion, source.display, destination.display);
  if (!IsConfirmed() || !MayWrite(destination)) return kSuccess;
  // What cannot be removed is not written into either: a fifo would never let the shell go.
  if (EntryExists(destination.full) && std::remove(destination.full) != 0) return FailWithoutRoom(destination);
  // A long name is no part of the file: its directory has it.
  if (!CopyFile(source.full, destination.full, status.st_mode) || !SyncMediumOfEntry(destination.full)) {
    (void)std::remove(destination.full);  // a part is of no use; there may be none
    return FailWithoutRoom(destination);
  }
  std::printf(kCopied, source.display, destination.display);
  return kSuccess;
}
