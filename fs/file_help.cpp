#include "fs/file_help.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>
#include <string_view>

#include "fs/medium.h"
#include "fs/named_file.h"
#include "fs/names/name_rules.h"
#include "fs/path.h"
#include "term/help/help_list.h"
#include "util/ascii.h"
#include "util/fixed_text.h"
#include "util/result.h"
#include "util/unique_handle.h"

namespace {

constexpr char kDeviceHelp[] = "Device name";

/// A generic line stands for a name that need not exist yet.
struct GenericLine {
  std::uint32_t kind;
  const char* keyword;
  const char* help;
};
constexpr GenericLine kGenericLines[] = {
    {FS_HELP_NEW_DIRECTORY, "STRING", "[drive][path]"},
    {FS_HELP_NEW_FILE, "STRING", "[drive][path][file name]"},
    {FS_HELP_DESTINATION, "STRING", "STRING"},
};

constexpr std::uint32_t kKindsWithFiles[] = {FS_HELP_EXISTING_FILE, FS_HELP_DESTINATION, FS_HELP_FILE_OR_DIRECTORY,
                                             FS_HELP_NEW_FILE,      FS_HELP_PACKAGE,     FS_HELP_LAST};

bool OffersFiles(std::uint32_t kind) {
  return std::find(std::begin(kKindsWithFiles), std::end(kKindsWithFiles), kind) != std::end(kKindsWithFiles);
}

bool EndsInSlash(const char* word) { return ESH_IsExpectFile(word) == 0; }

/// The word up to and including its last "/".
std::string_view DirectoryPart(std::string_view word) { return word.substr(0, word.rfind('/') + 1); }

bool Passes(FS_HELP_FILTER_F filter, const char* full) { return filter == nullptr || filter(full) == 0; }

/// Opens a directory whose entries shall be offered; NULL when it cannot be read.
UniqueDir OpenForHelp(const char* path) {
  UniqueDir directory(opendir(path));
  if (directory == nullptr && errno == ENOMEM) NoteLostHelpLine();
  return directory;
}

/// Offers one candidate, whose medium is present. A link counts as what it leads to.
void OfferCandidate(const char* word, const char* full, std::uint32_t kind, FS_HELP_FILTER_F filter, std::uint32_t mode,
                    VEC_S* help) {
  if (ESH_FS_IsValidFullFileName(full) != kSuccess || !Passes(filter, full)) return;
  struct stat status {};
  if (stat(full, &status) != 0) return;
  const bool is_directory = S_ISDIR(status.st_mode);
  if (!is_directory && !(S_ISREG(status.st_mode) && OffersFiles(kind))) return;
  FixedText<kNameRoom + kComponentRoom> text;
  if (mode == FS_OFFER_EXACT) {
    text.AppendText(word);
  } else {
    text.AppendText(DirectoryPart(word));
    text.AppendText(LastComponent(full));
  }
  text.AppendText(is_directory ? "/" : "");
  ESH_NewHelpInfo(text.Text(), text.Text(), help);
}

/// Offers the entries of a directory that begin with a prefix; hidden ones never.
/// @param directory full name without a trailing slash.
void OfferEntries(const char* word, std::string_view directory, std::string_view prefix, std::uint32_t kind,
                  FS_HELP_FILTER_F filter, VEC_S* help) {
  FixedText<kNameRoom + kComponentRoom> full;
  full.AppendText(directory);
  const UniqueDir entries = OpenForHelp(full.Text());
  if (entries == nullptr || !IsOnPresentMedium(full.Text()))  // asked once: there may be 100,000 entries
    return;
  full.AppendText("/");
  const std::size_t start = full.Length();
  for (const dirent* entry = readdir(entries.get()); entry != nullptr; entry = readdir(entries.get())) {
    const std::string_view name(entry->d_name);
    if (!name.starts_with('.') && BeginsIgnoringCase(name, prefix)) {
      full.CutTo(start);
      full.AppendText(name);
      OfferCandidate(word, full.Text(), kind, filter, FS_OFFER_COMPLETION, help);
    }
  }
}

void OfferWhatIsNamed(const char* word, const char* full, std::uint32_t kind, FS_HELP_FILTER_F filter, VEC_S* help) {
  if (IsDirectory(full) && EndsInSlash(word))
    OfferEntries(word, full, "", kind, filter, help);
  else
    ESH_HelpStatSwitch(word, full, kind, filter, FS_OFFER_EXACT, help);
}

void AddGenericLine(std::uint32_t kind, VEC_S* help) {
  for (const GenericLine& line : kGenericLines)
    if (line.kind == kind) ESH_NewHelpInfo(line.keyword, line.help, help);
}

/// The device name that a slot link stands for.
std::string_view DeviceOfEntry(std::string_view entry) {
  if (BeginsIgnoringCase(entry, kSlotPrefix)) entry.remove_prefix(std::strlen(kSlotPrefix));
  return entry;
}

bool IsLinkThatLeadsSomewhere(const char* entry) {
  FixedText<kNameRoom> path;
  path.Append("%s/%s", kMediaRoot, entry);
  struct stat status {};
  return lstat(path.Text(), &status) == 0 && S_ISLNK(status.st_mode) && stat(path.Text(), &status) == 0;
}

/// @return false when the word has gone past this device's name, so that no other can be meant.
bool OfferDevice(std::string_view device, std::string_view word, VEC_S* help) {
  if (!BeginsIgnoringCase(device, word)) return !BeginsIgnoringCase(word, device);
  FixedText<kNameRoom> text;
  text.AppendText(device);
  text.AppendText(word.empty() ? "" : "/");
  ESH_NewHelpInfo(text.Text(), kDeviceHelp, help);
  return true;
}

}  // namespace

std::uint32_t FS_HelpBaseEx(const char* word, std::uint32_t kind, FS_HELP_FILTER_F filter, VEC_S* help) {
  if (word == nullptr || kind > FS_HELP_LAST) return ESH_ERR_FAIL;
  if (word[0] == '/' || std::strlen(word) > kMaxName) return kSuccess;
  if (word[0] == '?')
    ESH_HelpMntDir("", help);
  else
    PartlyHelp(word, kind, filter, help);
  return kSuccess;
}

void ESH_HelpMntDir(const char* word, VEC_S* help) {
  const UniqueDir root = OpenForHelp(kMediaRoot);
  if (root == nullptr) return;
  for (const dirent* entry = readdir(root.get()); entry != nullptr; entry = readdir(root.get())) {
    if (entry->d_name[0] == '.' || !IsLinkThatLeadsSomewhere(entry->d_name)) continue;
    if (!OfferDevice(DeviceOfEntry(entry->d_name), word, help)) return;
  }
}

void PartlyHelp(const char* word, std::uint32_t kind, FS_HELP_FILTER_F filter, VEC_S* help) {
  ESH_HelpMntDir(word, help);
  char full[kNameRoom];
  if (ESH_InputName2FullValidName(word, 0, sizeof(full), full) != kSuccess) return;
  const std::string_view typed(word);
  if (kind == FS_HELP_PACKAGE && std::count(typed.begin(), typed.end(), '/') > 1) return;
  OfferWhatIsNamed(word, full, kind, filter, help);
  if (!EndsInSlash(word)) OfferEntries(word, ParentOf(full), LastComponent(typed), kind, filter, help);
  AddGenericLine(kind, help);
}

void ESH_HelpStatSwitch(const char* word, const char* full, std::uint32_t kind, FS_HELP_FILTER_F filter,
                        std::uint32_t mode, VEC_S* help) {
  if (IsOnPresentMedium(full)) OfferCandidate(word, full, kind, filter, mode, help);
}
