#include "tools/mkpkg/image_archive.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <vector>

#include "tools/mkpkg/archive_handle.h"
#include "tools/mkpkg/files.h"
#include "util/decimal.h"

namespace mkpkg {
namespace {

namespace fs = std::filesystem;

std::string ListEntries(const std::string& directory, std::vector<fs::path>& paths) {
  std::error_code error;
  for (auto entry = fs::recursive_directory_iterator(directory, error); !error && entry != fs::end(entry);
       entry.increment(error))
    paths.push_back(entry->path());
  if (error) return "cannot look through " + directory + ": " + error.message();
  // A directory's name is the beginning of what it holds, so it comes first.
  std::sort(paths.begin(), paths.end());
  return "";
}

/// Fills an entry from a file. What an archive cannot hold is refused: a socket would vanish without a word.
std::string DescribeFile(const fs::path& path, archive_entry* entry) {
  struct stat status {};
  if (lstat(path.c_str(), &status) != 0) return "cannot read " + path.string() + ": " + std::strerror(errno);
  archive_entry_set_filetype(entry, status.st_mode & S_IFMT);
  archive_entry_set_perm(entry, status.st_mode & 07777);
  archive_entry_set_nlink(entry, S_ISDIR(status.st_mode) ? 2 : 1);
  archive_entry_set_size(entry, S_ISREG(status.st_mode) ? status.st_size : 0);
  if (S_ISDIR(status.st_mode) || S_ISREG(status.st_mode)) return "";
  if (S_ISCHR(status.st_mode) || S_ISBLK(status.st_mode)) {
    archive_entry_set_rdev(entry, status.st_rdev);
    return "";
  }
  if (!S_ISLNK(status.st_mode)) return path.string() + " is neither a file, a directory, a link nor a device node";
  std::error_code error;
  archive_entry_set_symlink(entry, fs::read_symlink(path, error).c_str());
  return error ? "cannot read " + path.string() + ": " + error.message() : "";
}

std::string WriteEntry(archive* output, const fs::path& path, archive_entry* entry) {
  // A name beyond ASCII only warns: its bytes are written as they are.
  if (archive_write_header(output, entry) < ARCHIVE_WARN) return ArchiveReason(output);
  if (archive_entry_filetype(entry) != AE_IFREG) return "";
  auto left = static_cast<std::uint64_t>(archive_entry_size(entry));
  const std::string problem = FeedFile(path, [&](std::string_view piece) -> std::string {
    if (piece.size() > left) return "it grows while it is read";
    left -= piece.size();
    return WriteToArchive(output, piece);
  });
  return problem.empty() && left > 0 ? "it became shorter while it was read" : problem;
}

}  // namespace

std::string ArchiveDirectory(const std::string& directory, std::int64_t time, const Sink& sink) {
  std::vector<fs::path> paths;
  if (std::string problem = ListEntries(directory, paths); !problem.empty()) return problem;
  const UniqueArchiveWriter output(archive_write_new());
  if (!output || archive_write_set_format_cpio_newc(output.get()) != ARCHIVE_OK || !OpenToSink(output.get(), sink))
    return "cannot make an archive: " + ArchiveReason(output.get());
  la_int64_t number = 0;
  for (const fs::path& path : paths) {
    const UniqueArchiveEntry entry(archive_entry_new());
    if (!entry) return "out of memory";
    if (std::string problem = DescribeFile(path, entry.get()); !problem.empty()) return problem;
    archive_entry_set_pathname(entry.get(), path.lexically_relative(directory).c_str());
    archive_entry_set_ino64(entry.get(), ++number);
    archive_entry_set_mtime(entry.get(), time, 0);
    if (std::string problem = WriteEntry(output.get(), path, entry.get()); !problem.empty())
      return "cannot archive " + path.string() + ": " + problem;
  }
  return archive_write_close(output.get()) == ARCHIVE_OK ? ""
                                                         : "cannot end the archive: " + ArchiveReason(output.get());
}

std::string ReadTimeOfEntries(std::int64_t& time) {
  const char* text = std::getenv("SOURCE_DATE_EPOCH");
  std::uint64_t seconds = 0;
  // The format has 32 bits for it.
  if (text != nullptr && (!ReadDecimal(text, seconds) || seconds > 0xFFFFFFFF))
    return std::string("SOURCE_DATE_EPOCH is no number of seconds below 4294967296: ") + text;
  time = static_cast<std::int64_t>(seconds);
  return "";
}

}  // namespace mkpkg
