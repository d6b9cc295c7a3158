#include "fs/file_help.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>
#include <string_view>

#include "fs/medium.h"
#include "fs/name_rules.h"
#include "fs/path.h"
#include "shell/result.h"
#include "term/help_list.h"
#include "util/ascii.h"
#include "util/fixed_text.h"
#include "util/unique_handle.h"

namespace {

constexpr std::size_t kMaxHelpWord = 4096;
constexpr char kDeviceHelp[] = "Device name";

using OfferText = FixedText<kMaxHelpWord + kComponentRoom + 1>;

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

enum class EntryKind { kDirectory, kFile, kOther };

bool OffersFiles(std::uint32_t kind) {
  return std::find(std::begin(kKindsWithFiles), std::end(kKindsWithFiles), kind) != std::end(kKindsWithFiles);
}

bool EndsInSlash(const char* word) { return ESH_IsExpectFile(word) == 0; }

/// The word up to and including its last "/".
std::string_view DirectoryPart(std::string_view word) { return word.substr(0, word.rfind('/') + 1); }

/// A link counts as what it leads to.
EntryKind KindOf(const char* full) {
  struct stat status {};
  if (lstat(full, &status) != 0 || (S_ISLNK(status.st_mode) && stat(full, &status) != 0)) {
    return EntryKind::kOther;
  }
  if (S_ISDIR(status.st_mode)) {
    return EntryKind::kDirectory;
  }
  return S_ISREG(status.st_mode) ? EntryKind::kFile : EntryKind::kOther;
}

/// What the directory itself says of an entry spares asking for each; links and silent file systems must be asked.
EntryKind KindOf(const char* full, unsigned char entry_type) {
  switch (entry_type) {
    case DT_DIR:
      return EntryKind::kDirectory;
    case DT_REG:
      return EntryKind::kFile;
    case DT_LNK:
    case DT_UNKNOWN:
      return KindOf(full);
    default:
      return EntryKind::kOther;
  }
}

bool Passes(FS_HELP_FILTER_F filter, const char* full) { return filter == nullptr || filter(full) == 0; }

void Offer(OfferText& text, EntryKind entry_kind, VEC_S* help) {
  if (entry_kind == EntryKind::kDirectory) {
    text.AppendText("/");
  }
  ESH_NewHelpInfo(text.Text(), text.Text(), help);
}

/// Offers the word with an entry's name in place of its last component.
void OfferEntry(std::string_view word, std::string_view entry, EntryKind entry_kind, VEC_S* help) {
  OfferText text;
  text.AppendText(DirectoryPart(word));
  text.AppendText(entry);
  Offer(text, entry_kind, help);
}

void OfferAsTyped(std::string_view word, EntryKind entry_kind, VEC_S* help) {
  OfferText text;
  text.AppendText(word);
  Offer(text, entry_kind, help);
}

bool IsOffered(EntryKind entry_kind, std::uint32_t kind) {
  return entry_kind == EntryKind::kDirectory || (entry_kind == EntryKind::kFile && OffersFiles(kind));
}

/// Opens a directory whose entries shall be offered; NULL when it cannot be read.
UniqueDir OpenForHelp(const char* path) {
  UniqueDir directory(opendir(path));
  if (directory == nullptr && errno == ENOMEM) {
    NoteLostHelpLine();
  }
  return directory;
}

/// Offers the entries of a directory that begin with a prefix; hidden ones never, so that nothing in the full names
/// is left to convert: it is enough that they are valid.
/// @param directory full name without a trailing slash.
void OfferEntries(const char* word, std::string_view directory, std::string_view prefix, std::uint32_t kind,
                  FS_HELP_FILTER_F filter, VEC_S* help) {
  FixedText<kNameRoom + kComponentRoom> full;
  full.AppendText(directory);
  const UniqueDir entries = OpenForHelp(full.Text());
  if (entries == nullptr || !IsOnPresentMedium(full.Text())) {
    return;
  }
  full.AppendText("/");
  const std::size_t full_start = full.Length();
  OfferText offer;
  offer.AppendText(DirectoryPart(word));
  const std::size_t offer_start = offer.Length();
  for (const dirent* entry = readdir(entries.get()); entry != nullptr; entry = readdir(entries.get())) {
    const std::string_view name(entry->d_name);
    if (name.starts_with('.') || !BeginsIgnoringCase(name, prefix)) {
      continue;
    }
    full.CutTo(full_start);
    full.AppendText(name);
    // ESH_HelpStatSwitch in completion mode, less what is known here already: a listing may have 100,000 entries.
    const EntryKind entry_kind = KindOf(full.Text(), entry->d_type);
    if (IsOffered(entry_kind, kind) && IsValidEntryName(name, full.Length()) && Passes(filter, full.Text())) {
      offer.CutTo(offer_start);
      offer.AppendText(name);
      Offer(offer, entry_kind, help);
    }
  }
}

void OfferWhatIsNamed(const char* word, const char* full, std::uint32_t kind, FS_HELP_FILTER_F filter, VEC_S* help) {
  struct stat status {};
  if (stat(full, &status) != 0) {
    return;
  }
  if (S_ISDIR(status.st_mode) && EndsInSlash(word)) {
    OfferEntries(word, full, "", kind, filter, help);
  } else {
    ESH_HelpStatSwitch(word, full, kind, filter, FS_OFFER_EXACT, help);
  }
}

void AddGenericLine(std::uint32_t kind, VEC_S* help) {
  for (const GenericLine& line : kGenericLines) {
    if (line.kind == kind) {
      ESH_NewHelpInfo(line.keyword, line.help, help);
    }
  }
}

/// The device name that a slot link stands for.
std::string_view DeviceOfEntry(std::string_view entry) {
  if (BeginsIgnoringCase(entry, kSlotPrefix)) {
    entry.remove_prefix(std::strlen(kSlotPrefix));
  }
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
  FixedText<kComponentRoom + 1> text;
  text.AppendText(device);
  if (word.empty()) {
    ESH_NewHelpInfo(text.Text(), kDeviceHelp, help);
    return true;
  }
  if (BeginsIgnoringCase(device, word)) {
    text.AppendText("/");
    ESH_NewHelpInfo(text.Text(), kDeviceHelp, help);
    return true;
  }
  return !BeginsIgnoringCase(word, device);
}

}  // namespace

std::uint32_t FS_HelpBaseEx(const char* word, std::uint32_t kind, FS_HELP_FILTER_F filter, VEC_S* help) {
  if (word == nullptr || kind > FS_HELP_LAST) {
    return ESH_ERR_FAIL;
  }
  if (word[0] == '/' || std::strlen(word) > kMaxHelpWord) {
    return kSuccess;
  }
  if (word[0] == '?') {
    ESH_HelpMntDir("", help);
  } else {
    PartlyHelp(word, kind, filter, help);
  }
  return kSuccess;
}

void ESH_HelpMntDir(const char* word, VEC_S* help) {
  const UniqueDir root = OpenForHelp(kMediaRoot);
  if (root == nullptr) {
    return;
  }
  for (const dirent* entry = readdir(root.get()); entry != nullptr; entry = readdir(root.get())) {
    if (entry->d_name[0] == '.' || !IsLinkThatLeadsSomewhere(entry->d_name)) {
      continue;
    }
    if (!OfferDevice(DeviceOfEntry(entry->d_name), word, help)) {
      return;
    }
  }
}

void PartlyHelp(const char* word, std::uint32_t kind, FS_HELP_FILTER_F filter, VEC_S* help) {
  ESH_HelpMntDir(word, help);
  char full[kNameRoom];
  if (ESH_InputName2FullValidName(word, 0, sizeof(full), full) != kSuccess) {
    return;
  }
  const std::string_view typed(word);
  if (kind == FS_HELP_PACKAGE && std::count(typed.begin(), typed.end(), '/') > 1) {
    return;
  }
  OfferWhatIsNamed(word, full, kind, filter, help);
  if (!EndsInSlash(word)) {
    OfferEntries(word, ParentOf(full), LastComponent(typed), kind, filter, help);
  }
  AddGenericLine(kind, help);
}

void ESH_HelpStatSwitch(const char* word, const char* full, std::uint32_t kind, FS_HELP_FILTER_F filter,
                        std::uint32_t mode, VEC_S* help) {
  if (ESH_FS_IsValidFullFileName(full) != kSuccess || !Passes(filter, full) || !IsOnPresentMedium(full)) {
    return;
  }
  const EntryKind entry_kind = KindOf(full);
  if (!IsOffered(entry_kind, kind)) {
    return;
  }
  if (mode == FS_OFFER_EXACT) {
    OfferAsTyped(word, entry_kind, help);
  } else {
    OfferEntry(word, LastComponent(full), entry_kind, help);
  }
}
