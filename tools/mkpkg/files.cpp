#include "tools/mkpkg/files.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <vector>

#include "tools/mkpkg/progress.h"
#include "util/new_file.h"

namespace mkpkg {
namespace {

constexpr std::size_t kFilePiece = 1 << 18;
constexpr int kFatalSignals[] = {SIGHUP, SIGINT, SIGTERM};

char g_temporary[PATH_MAX];  // the file to remove when a signal ends the program; "": none

extern "C" void RemoveTemporary(int number) {
  (void)unlink(g_temporary);
  (void)std::signal(number, SIG_DFL);
  (void)raise(number);
}

std::string Reason(const char* what, const std::string& path) {
  return std::string("cannot ") + what + " " + path + ": " + std::strerror(errno);
}

/// A temporary file that is gone when the object is, unless it took the place of another.
class Temporary {
 public:
  explicit Temporary(const std::string& path) : name_(path + ".XXXXXX"), fd_(mkostemp(name_.data(), O_CLOEXEC)) {
    if (!fd_) return;  // nor is there one when the name is longer than g_temporary
    std::copy(name_.begin(), name_.end() + 1, g_temporary);
    for (const int number : kFatalSignals)
      if (std::signal(number, RemoveTemporary) == SIG_IGN) (void)std::signal(number, SIG_IGN);
  }
  Temporary(const Temporary&) = delete;
  Temporary& operator=(const Temporary&) = delete;
  ~Temporary() {
    if (fd_) unlink(name_.c_str());
    g_temporary[0] = '\0';
  }

  [[nodiscard]] int Get() const { return fd_.Get(); }
  [[nodiscard]] const std::string& Name() const { return name_; }

  /// @param replace  false: fails with EEXIST when the place is taken.
  bool TakePlaceOf(const std::string& path, bool replace) const {
    // The link is made only where nothing stands; the temporary name goes with this object.
    return (replace ? rename(name_.c_str(), path.c_str()) : link(name_.c_str(), path.c_str())) == 0;
  }

 private:
  std::string name_;
  UniqueFd fd_;
};

bool IsRegular(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) != 0 || S_ISREG(status.st_mode);
}

}  // namespace

Sink IntoFile(int fd, const std::string& path) {
  return [fd, path](std::string_view piece) {
    return WriteAll(fd, piece.data(), piece.size()) ? "" : Reason("write", path);
  };
}

std::string FeedFile(const std::string& path, const Sink& sink) {
  const UniqueFd fd(open(path.c_str(), O_RDONLY | O_CLOEXEC));
  struct stat status {};
  if (!fd || fstat(fd.Get(), &status) != 0) return Reason("read", path);
  Progress progress("Reading " + path, S_ISREG(status.st_mode) ? static_cast<std::uint64_t>(status.st_size) : 0);
  std::vector<char> piece(kFilePiece);
  for (;;) {
    const ssize_t count = read(fd.Get(), piece.data(), piece.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return Reason("read", path);
    if (count == 0) return "";
    const auto length = static_cast<std::size_t>(count);
    if (std::string problem = sink({piece.data(), length}); !problem.empty()) return problem;
    progress.Advance(length);
  }
}

std::string ReadWholeFile(const std::string& path, std::string& bytes) {
  bytes.clear();
  return FeedFile(path, [&](std::string_view piece) {
    bytes += piece;
    return "";
  });
}

std::string WriteFile(const std::string& path, const FillFile& fill, mode_t mode, bool replace) {
  const bool is_regular = IsRegular(path);
  const Temporary temporary(is_regular ? path : std::filesystem::temp_directory_path().string() + "/mkpkg");
  if (temporary.Get() < 0) return Reason("write", path);
  if (std::string problem = fill(temporary.Get()); !problem.empty()) return problem;
  if (!is_regular) {
    const UniqueFd fd(open(path.c_str(), O_WRONLY | O_CLOEXEC));
    return fd ? FeedFile(temporary.Name(), IntoFile(fd.Get(), path)) : Reason("write", path);
  }
  const mode_t mask = umask(0);
  umask(mask);
  const bool is_done =
      fchmod(temporary.Get(), mode & ~mask) == 0 && fsync(temporary.Get()) == 0 && temporary.TakePlaceOf(path, replace);
  return is_done ? "" : Reason("write", path);
}

std::string WriteWholeFile(const std::string& path, std::string_view bytes, mode_t mode, bool replace) {
  return WriteFile(
      path, [&](int fd) { return IntoFile(fd, path)(bytes); }, mode, replace);
}

bool WriteAt(int fd, std::uint64_t offset, std::string_view bytes) {
  return lseek(fd, static_cast<off_t>(offset), SEEK_SET) >= 0 && WriteAll(fd, bytes.data(), bytes.size());
}

UniqueFd OpenScratch() {
  std::string name = std::filesystem::temp_directory_path().string() + "/mkpkg.XXXXXX";
  UniqueFd fd(mkostemp(name.data(), O_CLOEXEC));
  if (fd) (void)unlink(name.c_str());  // a name that stays is the administrator's affair
  return fd;
}

std::string InMemory(std::string& bytes, const FillFile& work) {
  const UniqueFd fd(memfd_create("package", MFD_CLOEXEC));
  if (!fd || !WriteAll(fd.Get(), bytes.data(), bytes.size())) return "out of memory";
  if (std::string problem = work(fd.Get()); !problem.empty()) return problem;
  bytes.clear();
  FilePieces pieces(fd.Get(), 0, static_cast<std::uint64_t>(lseek(fd.Get(), 0, SEEK_END)));
  return FeedPieces(pieces, [&](std::string_view piece) {
    bytes += piece;
    return "";
  });
}

std::string BaseName(const std::string& path) { return path.substr(path.rfind('/') + 1); }

}  // namespace mkpkg
