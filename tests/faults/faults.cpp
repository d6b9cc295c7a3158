// Makes the n-th call of one kind fail. The plan stands in /tmp/fault: "CALL N ERROR". Every call of that kind counts N
// down in the file; the one that brings it to 0 fails with that error number, or
//    0   does half of what it was asked for (read and write)
//   -1   does nothing, for the process is killed there
// Calls on standard input, output and error do not count: a console is no medium.
#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace {

constexpr char kPlan[] = "/tmp/fault";
constexpr std::size_t kLargeBlock = 32768;  // only a file command asks for that much memory at once
constexpr int kKill = -1;

/// The calls below must not come back here, so they are the kernel's own.
long OpenRaw(const char* path, int flags, mode_t mode) { return syscall(SYS_openat, AT_FDCWD, path, flags, mode); }

/// @return whether this call is the one to fail; `error` is then the plan's.
bool IsDue(const char* call, int& error) {
  char text[64] = "";
  char planned[32] = "";
  int left = 0;
  const long plan = OpenRaw(kPlan, O_RDWR | O_CLOEXEC, 0);
  if (plan < 0) return false;
  const bool is_planned = syscall(SYS_read, plan, text, sizeof(text) - 1) > 0 &&
                          // What does not convert leaves fewer than three.  NOLINTNEXTLINE(cert-err34-c)
                          std::sscanf(text, "%31s %d %d", planned, &left, &error) == 3 &&
                          std::strcmp(planned, call) == 0 && left > 0;
  if (is_planned) {
    const int length = std::snprintf(text, sizeof(text), "%s %d %d\n", planned, left - 1, error);
    syscall(SYS_ftruncate, plan, 0);
    syscall(SYS_pwrite64, plan, text, length, 0);
  }
  syscall(SYS_close, plan);
  return is_planned && left == 1;
}

/// @return whether the call fails; errno is set. A process to be killed does not come back.
bool Fails(const char* call) {
  const int before = errno;
  int error = 0;
  if (!IsDue(call, error)) {
    errno = before;
    return false;
  }
  if (error == kKill) raise(SIGKILL);
  errno = error;
  return true;
}

/// As if whoever starts the program had been in the middle of something.
[[gnu::constructor]] void BlockSignals() {
  sigset_t all;
  sigfillset(&all);
  sigprocmask(SIG_SETMASK, &all, nullptr);
}

template <typename Function>
Function* Next(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

// The library's own names for the parameters are reserved words.
// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name)
extern "C" {

ssize_t read(int fd, void* buffer, size_t size) {
  const bool fails = fd > STDERR_FILENO && Fails("read");
  if (fails && errno != 0) return -1;
  return syscall(SYS_read, fd, buffer, fails ? size / 2 : size);
}

ssize_t write(int fd, const void* buffer, size_t size) {
  const bool fails = fd > STDERR_FILENO && Fails("write");
  if (fails && errno != 0) return -1;
  return syscall(SYS_write, fd, buffer, fails ? size / 2 : size);
}

int open(const char* path, int flags, ...) {
  va_list rest;
  va_start(rest, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
  va_end(rest);
  return Fails("open") ? -1 : static_cast<int>(OpenRaw(path, flags, mode));
}

int creat(const char* path, mode_t mode) {
  return Fails("creat") ? -1 : static_cast<int>(OpenRaw(path, O_CREAT | O_WRONLY | O_TRUNC, mode));
}

int fsync(int fd) { return Fails("fsync") ? -1 : static_cast<int>(syscall(SYS_fsync, fd)); }

int syncfs(int fd) noexcept { return Fails("syncfs") ? -1 : static_cast<int>(syscall(SYS_syncfs, fd)); }

void sync() noexcept {
  if (!Fails("sync")) syscall(SYS_sync);
}

/// A close that fails has closed, as on Linux.
int close(int fd) {
  const bool fails = fd > STDERR_FILENO && Fails("close");
  const int error = errno;
  const int result = static_cast<int>(syscall(SYS_close, fd));
  if (fails) errno = error;
  return fails ? -1 : result;
}

int mkdir(const char* path, mode_t mode) noexcept {
  return Fails("mkdir") ? -1 : static_cast<int>(syscall(SYS_mkdirat, AT_FDCWD, path, mode));
}

int rmdir(const char* path) noexcept {
  return Fails("rmdir") ? -1 : static_cast<int>(syscall(SYS_unlinkat, AT_FDCWD, path, AT_REMOVEDIR));
}

int chdir(const char* path) noexcept { return Fails("chdir") ? -1 : static_cast<int>(syscall(SYS_chdir, path)); }

int lstat(const char* path, struct stat* status) noexcept {
  return Fails("lstat") ? -1 : Next<int(const char*, struct stat*)>("lstat")(path, status);
}

pid_t fork() noexcept { return Fails("fork") ? -1 : Next<pid_t()>("fork")(); }

/// A child that shares its parent's stack must not return through this function's frame.
pid_t vfork() noexcept { return fork(); }

int remove(const char* path) noexcept { return Fails("remove") ? -1 : Next<int(const char*)>("remove")(path); }

DIR* opendir(const char* path) { return Fails("opendir") ? nullptr : Next<DIR*(const char*)>("opendir")(path); }

void* malloc(size_t size) noexcept {
  static void* (*const next)(size_t) = Next<void*(size_t)>("malloc");
  return size >= kLargeBlock && Fails("malloc") ? nullptr : next(size);
}

void* aligned_alloc(size_t alignment, size_t size) noexcept {
  return Fails("aligned_alloc") ? nullptr : Next<void*(size_t, size_t)>("aligned_alloc")(alignment, size);
}

}  // extern "C"
// NOLINTEND(readability-inconsistent-declaration-parameter-name)
