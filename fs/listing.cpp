#include "fs/listing.h"

#include <dirent.h>
#include <glob.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <cstdio>
#include <ctime>
#include <string_view>

#include "fs/file_messages.h"
#include "fs/names/name_rules.h"
#include "fs/path.h"
#include "fs/working_directory.h"
#include "shell/command/parameter.h"
#include "term/pager.h"
#include "util/ascii.h"
#include "util/fixed_text.h"
#include "util/result.h"
#include "util/unique_handle.h"

namespace {

constexpr char kDirectoryOf[] = "Directory of %s\r\n";
constexpr char kIsEmpty[] = "The directory is empty.\r\n";
constexpr char kSpace[] = "\r\n%ld KB total (%ld KB free)\r\n";

// An entry's line: index, attributes, size, date and name.
constexpr char kFileLine[] = "%6u%10s%12ld  %s   %.255s\r\n";
constexpr char kDirectoryLine[] = "%6u%10s%12c  %s   %.255s\r\n";
constexpr char kNoSize = '-';
constexpr char kDateFormat[] = "%b %d %Y %H:%M:%S  ";  // its two blanks come before the line's own three
constexpr long kSpaceUnit = 512;

/// Lines on their way to the pager. Handing over each for itself would cost a system call per entry.
class Listing {
 public:
  std::uint32_t Add(std::string_view line) {
    const std::uint32_t verdict = pending_.Length() + line.size() < kBlockRoom ? kSuccess : Show();
    pending_.AppendText(line);
    return verdict;
  }

  [[nodiscard]] std::uint32_t Show() {
    const std::uint32_t verdict = ESH_OutString(pending_.Text());
    pending_.Clear();
    return verdict;
  }

 private:
  static constexpr std::size_t kBlockRoom = 8192;
  FixedText<kBlockRoom> pending_;
};

using ListingLine = FixedText<kNameRoom>;

/// What glob(3) found, freed with it.
class Matches {
 public:
  Matches() = default;
  ~Matches() { globfree(&found_); }
  Matches(const Matches&) = delete;
  Matches& operator=(const Matches&) = delete;

  /// Adds what matches a pattern in the working directory, in sorted order.
  void Add(const char* pattern) {
    (void)glob(pattern, Count() > 0 ? GLOB_APPEND : 0, nullptr, &found_);  // no match is an empty listing
  }
  [[nodiscard]] std::size_t Count() const { return found_.gl_pathc; }
  [[nodiscard]] const char* At(std::size_t index) const { return found_.gl_pathv[index]; }

 private:
  glob_t found_{};
};

/// An entry's own name decides, also inside a hidden directory.
bool IsHidden(const char* name) { return ESH_IsVisibleFullFileName(name) != kSuccess; }

/// Formats an entry's line. @return false when the entry has vanished.
bool FormatLine(const char* path, std::uint32_t index, ListingLine& line) {
  struct stat status {};
  if (stat(path, &status) != 0) return false;
  const bool is_directory = S_ISDIR(status.st_mode);
  const char* name = LastComponent(path).data();  // the end of a terminated text
  const char attributes[] = {is_directory ? 'd' : '-', (status.st_mode & S_IRUSR) != 0 ? 'r' : '-',
                             (status.st_mode & S_IWUSR) != 0 ? 'w' : '-', IsHidden(name) ? 'h' : '-', '\0'};
  std::tm local{};
  char date[kComponentRoom] = "";
  if (localtime_r(&status.st_mtime, &local) != nullptr) (void)std::strftime(date, sizeof(date), kDateFormat, &local);
  if (is_directory)
    line.Append(kDirectoryLine, index, attributes, kNoSize, date, name);
  else
    line.Append(kFileLine, index, attributes, static_cast<long>(status.st_size), date, name);
  return true;
}

/// The heading, for a directory that has a display name.
bool FormatHeading(const char* full, TextBuilder& heading) {
  char name[kNameRoom];
  if (ESH_FS_GetUserFileNameByFullName(full, sizeof(name), name) != kSuccess) return false;
  heading.Append(kDirectoryOf, name);
  return true;
}

using Heading = FixedText<kNameRoom + sizeof(kDirectoryOf)>;

bool IsShown(const char* name, bool all) { return !IsDotOrDotDot(name) && (all || !IsHidden(name)); }

/// Lists the entries that were found in the working directory.
/// @param heading printed before the first entry.
/// @return 0, or ESH_ERR_FAIL when the user stopped.
std::uint32_t ListMatches(const Matches& matches, bool all, const Heading& heading) {
  tzset();  // once per listing: it looks at the time zone's file
  Listing listing;
  std::uint32_t verdict = kSuccess;
  std::uint32_t index = 0;
  for (std::size_t i = 0; verdict == kSuccess && i < matches.Count(); ++i) {
    if (!IsShown(matches.At(i), all)) continue;
    if (index == 0) listing.Add(heading.View());  // what was empty has room
    ListingLine line;
    if (FormatLine(matches.At(i), index, line)) verdict = listing.Add(line.View());
    ++index;  // also for an entry that has vanished
  }
  if (index == 0) listing.Add(kIsEmpty);
  return verdict == kSuccess ? listing.Show() : verdict;
}

/// Finds an entry that a directory does not list as it was typed, but in another case, for on some media the case of a
/// name does not count. @param spelling stays empty when there is none.
void FindOtherSpelling(const char* directory, std::string_view name, TextBuilder& spelling) {
  const UniqueDir entries(opendir(directory));
  if (entries == nullptr) return;
  for (const dirent* entry = readdir(entries.get()); entry != nullptr; entry = readdir(entries.get())) {
    const std::string_view candidate(entry->d_name);
    if (candidate == name) return spelling.Clear();
    if (spelling.Length() == 0 && EqualsIgnoringCase(candidate, name)) spelling.AppendText(candidate);
  }
}

/// Lists one file under its parent's heading.
std::uint32_t ListOneFile(const char* full) {
  const std::string_view name = LastComponent(full);
  FixedText<kNameRoom> parent;
  parent.AppendText(ParentOf(full));
  Heading heading;
  if (!FormatHeading(parent.Text(), heading)) {
    ESH_DirFsInfo(full);
    return ESH_ERR_FAIL;
  }
  FixedText<kComponentRoom> spelling;
  FindOtherSpelling(parent.Text(), name, spelling);
  FixedText<kNameRoom + kComponentRoom> file;
  file.AppendText(parent.View());
  file.AppendText("/");
  file.AppendText(spelling.Length() == 0 ? name : spelling.View());
  if (ESH_OutString(heading.Text()) != kSuccess || ESH_DirOneFileOfList(file.Text(), 0) != kSuccess)
    return ESH_ERR_FAIL;
  ESH_DirFsInfo(full);
  return kSuccess;
}

/// Lists a directory and its medium's space.
std::uint32_t ListDirectory(const char* full, bool all) {
  const std::uint32_t verdict = ESH_ListFileInfoInDir(full, all);
  if (verdict == kSuccess) ESH_DirFsInfo(full);
  return verdict;
}

}  // namespace

std::uint32_t ESH_ProcDir() { return ESH_DirFileInHomePath(false); }

std::uint32_t ESH_ProcDirAll() { return ESH_DirFileInHomePath(true); }

std::uint32_t ESH_ProcDirFile() { return ESH_DirFileInDirectory(g_szSourceFile, false); }

std::uint32_t ESH_ProcDirAllFile() { return ESH_DirFileInDirectory(g_szSourceFile, true); }

std::uint32_t ESH_DirFileInHomePath(bool all) {
  char full[kNameRoom];
  return ESH_GetFulleDirName(".", sizeof(full), full) == kSuccess ? ListDirectory(full, all) : ESH_ERR_FAIL;
}

std::uint32_t ESH_DirFileInDirectory(const char* name, bool all) {
  char full[kNameRoom];
  struct stat status {};
  if (ESH_GetFulleDirName(name, sizeof(full), full) != kSuccess || stat(full, &status) != 0) return ESH_ERR_FAIL;
  return S_ISDIR(status.st_mode) ? ListDirectory(full, all) : ListOneFile(full);
}

std::uint32_t ESH_ListFileInfoInDir(const char* full, bool all) {
  Heading heading;
  const bool has_name = FormatHeading(full, heading);
  const WorkingDirectoryKept kept;
  if (!kept || chdir(full) != 0) return ESH_ERR_FAIL;
  Matches matches;
  if (has_name) {  // a place without a display name shows no entries
    matches.Add("*");
    matches.Add(".*");
  }
  return ListMatches(matches, all, heading);
}

std::uint32_t ESH_DirOneFileOfList(const char* full, std::uint32_t index) {
  tzset();
  ListingLine line;
  return FormatLine(full, index, line) ? ESH_OutString(line.Text()) : kSuccess;
}

void ESH_DirFsInfo(const char* full) {
  struct statfs space {};
  if (statfs(full, &space) != 0) return;
  const long units = static_cast<long>(space.f_bsize) / kSpaceUnit;
  const auto kilobytes = [&](fsblkcnt_t blocks) { return units * static_cast<long>(blocks) / 2; };
  ListingLine line;
  line.Append(kSpace, kilobytes(space.f_blocks), kilobytes(space.f_bfree));
  (void)ESH_OutString(line.Text());  // the last of the output: nothing is left to stop
}

std::uint32_t ESH_GetFulleDirName(const char* name, std::size_t size, char* full) {
  if (ESH_InputName2FullValidName(name, 0, size, full) == kSuccess && access(full, F_OK) == 0) return kSuccess;
  std::puts(kDoesNotExist);
  return ESH_ERR_FAIL;
}
