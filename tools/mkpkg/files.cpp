#include "tools/mkpkg/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <cstring>

#include "util/new_file.h"
#include "util/unique_handle.h"

namespace mkpkg {
namespace {

constexpr std::size_t kPiece = 1 << 20;
constexpr int kFatalSignals[] = {SIGHUP, SIGINT, SIGTERM};

char g_temporary[PATH_MAX];  // the file to remove when a signal ends the program; "": none

extern "C" void RemoveTemporary(int number) {
  if (g_temporary[0] != '\0') unlink(g_temporary);
  (void)std::signal(number, SIG_DFL);
  (void)raise(number);
}

std::string Reason(const char* what, const std::string& path) {
  return std::string("cannot ") + what + " " + path + ": " + std::strerror(errno);
}

/// A temporary file that is gone when the object is, unless it took the place of another.
class Temporary {
 public:
  explicit Temporary(const std::string& path) : name_(path + ".XXXXXX") {
    fd_.Reset(name_.size() < sizeof(g_temporary) ? mkostemp(name_.data(), O_CLOEXEC) : -1);
    if (!fd_) return;
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

  /// @param replace  false: fails with EEXIST when the place is taken.
  bool TakePlaceOf(const std::string& path, bool replace) const {
    // The link is made only where nothing stands; the temporary name goes with this object.
    return (replace ? rename(name_.c_str(), path.c_str()) : link(name_.c_str(), path.c_str())) == 0;
  }

 private:
  std::string name_;
  UniqueFd fd_;
};

std::string WriteInPlace(const std::string& path, std::string_view bytes) {
  UniqueFd fd(open(path.c_str(), O_WRONLY | O_CLOEXEC));
  if (!fd || !WriteAll(fd.Get(), bytes.data(), bytes.size()) || close(fd.Release()) != 0) return Reason("write", path);
  return "";
}

}  // namespace

std::string ReadWholeFile(const std::string& path, std::string& bytes) {
  bytes.clear();
  const UniqueFd fd(open(path.c_str(), O_RDONLY | O_CLOEXEC));
  struct stat status {};
  if (!fd || fstat(fd.Get(), &status) != 0) return Reason("read", path);
  if (S_ISREG(status.st_mode)) bytes.reserve(static_cast<std::size_t>(status.st_size));
  for (;;) {
    const std::size_t had = bytes.size();
    bytes.resize(had + kPiece);
    const ssize_t count = read(fd.Get(), bytes.data() + had, kPiece);
    const int error = errno;
    bytes.resize(had + static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    errno = error;
    if (count < 0 && errno != EINTR) return Reason("read", path);
    if (count == 0) return "";
  }
}

std::string WriteWholeFile(const std::string& path, std::string_view bytes, mode_t mode, bool replace) {
  struct stat status {};
  if (stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) return WriteInPlace(path, bytes);
  const Temporary temporary(path);
  const mode_t mask = umask(0);
  umask(mask);
  if (temporary.Get() < 0 || !WriteAll(temporary.Get(), bytes.data(), bytes.size()) ||
      fchmod(temporary.Get(), mode & ~mask) != 0 || fsync(temporary.Get()) != 0 ||
      !temporary.TakePlaceOf(path, replace))
    return Reason("write", path);
  return "";
}

std::string BaseName(const std::string& path) { return path.substr(path.rfind('/') + 1); }

}  // namespace mkpkg
