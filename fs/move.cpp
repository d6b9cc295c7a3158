#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <string_view>

#include "fs/file_commands.h"
#include "fs/file_messages.h"
#include "fs/named_file.h"
#include "fs/names/name_rules.h"
#include "shell/command/parameter.h"
#include "shell/tool/tool_line.h"
#include "term/prompts.h"
#include "util/fixed_text.h"
#include "util/result.h"
#include "util/unique_handle.h"

namespace {

constexpr char kMoveQuestion[] = "Move %s to %s?[Y/N]:";
constexpr char kTool[] = "/bin/mv";

using TargetName = FixedText<kNameRoom + kComponentRoom>;

/// Finds where the tool writes to: into a directory that has the destination's name.
void FindTarget(const char* source, const char* destination, TargetName& target) {
  target.AppendText(destination);
  if (IsDirectory(destination)) target.Append("/%s", LastComponent(source).data());  // the end of a terminated text
}

bool IsLink(const char* full) {
  struct stat status {};
  return lstat(full, &status) == 0 && S_ISLNK(status.st_mode);
}

/// Whether the tool would destroy the file by moving it onto itself: it puts a link in the place of what it points to,
/// and between two mounts of one folder it removes the destination first. Within a folder it renames, which is safe.
bool WouldLose(const char* source, const char* target) {
  const bool is_rename = ParentOf(source) == ParentOf(target) && !IsLink(source);
  return std::string_view(source) != target && !is_rename && IsSameEntry(source, target);
}

/// Whether the tool would ask before it replaces the target, wait for ever for an answer that is not echoed, and take a
/// "no" for a success. What cannot be written to, on a protected medium, it cannot replace either.
bool WouldAsk(const char* target) { return Exists(target) && !IsLink(target) && access(target, W_OK) != 0; }

/// Takes away a link that leads nowhere: between two media the tool would make the file that it leads to, anywhere.
/// @return false when it stays.
bool TakeDeadLinkAway(const char* target) { return !IsLink(target) || Exists(target) || std::remove(target) == 0; }

/// Removes what a failed move left of the target. Where the source is gone, or is the target, that is the file itself:
/// the tool may have been killed when all but its own end was done.
void RemovePart(const char* source, const char* target) {
  struct stat status {};
  if (stat(source, &status) == 0 && !IsSameEntry(source, target)) (void)std::remove(target);  // there may be none
}

/// Whether there is a tool to start. Without it nothing is touched: what has the target's name is no part of this move.
bool CanRun(const ToolLine& line) { return !line.Truncated() && access(kTool, X_OK) == 0; }

std::uint32_t Move(const char* source, const char* destination, const char* target) {
  ToolLine line;
  line.Append("%s %s %s", kTool, source, destination);
  if (!CanRun(line) || WouldLose(source, target) || WouldAsk(target) || !TakeDeadLinkAway(target)) return ESH_ERR_FAIL;
  const std::uint32_t moved = RunTool(line);
  if (moved != kSuccess) RemovePart(source, target);
  return moved;
}

}  // namespace

std::uint32_t ESH_ProcMove() {
  NamedFile source;
  NamedFile destination;
  struct stat status {};
  if (!ResolveTransfer(g_szSourceFile, g_szDestFile, source, destination, status)) return Refuse(kDoesNotExist);
  TargetName target;
  FindTarget(source.full, destination.full, target);
  if (!LiesOnMedium(source.full) || !LiesOnMedium(target.Text())) return Refuse(kDoesNotExist);
  std::printf(kMoveQuestion, source.display, destination.display);
  if (!IsConfirmed()) return ESH_ERR_FAIL;
  // The tool waits for no medium. While the source is open, FAT is in no hurry to write that it is gone: until the
  // target is safe, a power cut finds it.
  UniqueFd held(open(source.full, O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  if (Move(source.full, destination.full, target.Text()) != kSuccess) {
    SyncMedia(target.Text());
    return Refuse(kNoRoom);
  }
  SyncMediumOfEntry(target.Text());
  held.Reset();
  SyncMediumOfEntry(source.full);
  return kSuccess;
}
