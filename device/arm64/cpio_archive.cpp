#include "device/arm64/cpio_archive.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>
#include <vector>

#include "device/board/file_bytes.h"

namespace device {
namespace {

namespace fs = std::filesystem;

constexpr char kEndName[] = "TRAILER!!!";  // of the format
constexpr unsigned kTime = 1;              // the start of time, but not what tools take for "no time"
constexpr std::uint64_t kAlignment = 4;

std::uint32_t ModeOf(const fs::directory_entry& entry) {
  const fs::perms permissions = entry.symlink_status().permissions();
  if (entry.is_symlink()) return S_IFLNK | 0777;
  if (entry.is_directory()) return S_IFDIR | ((permissions & fs::perms::sticky_bit) == fs::perms::none ? 0755 : 01777);
  return S_IFREG | ((permissions & fs::perms::owner_exec) == fs::perms::none ? 0644 : 0755);
}

}  // namespace

std::string CpioArchive::AddTree(const std::string& directory) {
  std::error_code error;
  std::vector<fs::directory_entry> found;
  for (auto entry = fs::recursive_directory_iterator(directory, error); entry != fs::end(entry); entry.increment(error))
    found.push_back(*entry);
  if (error) return "cannot look through " + directory + ": " + error.message();
  // A directory's name is the beginning of what it holds, so it comes first.
  std::sort(found.begin(), found.end(), [](const auto& one, const auto& other) { return one.path() < other.path(); });

  Add({".", S_IFDIR | 0755, 2, 0, 0}, "");
  for (const fs::directory_entry& entry : found) {
    const std::uint32_t mode = ModeOf(entry);
    std::string bytes;
    if (S_ISLNK(mode)) bytes = fs::read_symlink(entry.path(), error).string();
    if (S_ISREG(mode)) {
      std::optional<std::string> contents = FileBytes(entry.path());
      if (!contents) return "cannot read " + entry.path().string();
      bytes = std::move(*contents);
    }
    const std::uint32_t links = S_ISDIR(mode) ? 2 : 1;
    Add({entry.path().lexically_relative(directory).string(), mode, links, 0, 0}, bytes);
  }
  return "";
}

void CpioArchive::AddDevice(const std::string& path, std::uint32_t mode, std::uint32_t major, std::uint32_t minor) {
  Add({path, S_IFCHR | mode, 1, major, minor}, "");
}

bool CpioArchive::Finish() {
  Add({kEndName, 0, 1, 0, 0}, "");
  output_.flush();
  return output_.good();
}

/// A head is the format's number and thirteen fields of eight hexadecimal digits; the name, its NUL and the bytes
/// follow, each brought to a multiple of four.
void CpioArchive::Add(const Entry& entry, std::string_view bytes) {
  char head[6 + 13 * 8 + 1];
  const auto name_length = static_cast<unsigned>(entry.path.size() + 1);
  const int head_length = std::snprintf(
      head, sizeof(head), "070701%08X%08X%08X%08X%08X%08X%08X%08X%08X%08X%08X%08X%08X", ++entries_, entry.mode, 0U, 0U,
      entry.links, kTime, static_cast<unsigned>(bytes.size()), 0U, 0U, entry.major, entry.minor, name_length, 0U);
  output_ << std::string_view(head, static_cast<std::size_t>(head_length)) << entry.path << '\0';
  length_ += static_cast<std::uint64_t>(head_length) + name_length;
  Pad();
  output_ << bytes;
  length_ += bytes.size();
  Pad();
}

void CpioArchive::Pad() {
  for (; length_ % kAlignment != 0; ++length_) output_ << '\0';
}

}  // namespace device
