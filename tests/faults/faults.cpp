// Makes the n-th call of one kind fail. The plan stands in /tmp/fault: "CALL N ERROR", where ERROR is the name of an
// error number, HALF (the call writes half of what it was given) or KILL (the process is killed). Calls on standard
// input, output and error do not count: a console is no medium. The call that fails leaves "due" for a plan. Counting
// begins anew with each plan.
#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <initializer_list>

namespace {

constexpr char kPlan[] = "/tmp/fault";
constexpr std::size_t kLargeBlock = 32768;  // only a file command asks for that much memory at once
constexpr int kHalf = 0;

int ErrorOf(const char* name) {
  for (const int error : {EAGAIN, EBUSY, EIO, ENOMEM, ENOSPC, EROFS})
    if (std::strcmp(strerrorname_np(error), name) == 0) return error;
  if (std::strcmp(name, "KILL") == 0) raise(SIGKILL);
  return kHalf;
}

/// @return whether the call fails; errno is set. The calls below must not come back here, so they are the kernel's own.
bool Fails(const char* call) {
  static int calls = 0;  // of the kind that is planned
  const int before = errno;
  char text[64] = "";
  char planned[32] = "";
  char error[32] = "";
  int number = 0;
  const long plan = syscall(SYS_openat, AT_FDCWD, kPlan, O_RDWR | O_CLOEXEC);
  if (plan < 0) calls = 0;
  const bool counts = plan >= 0 && syscall(SYS_read, plan, text, sizeof(text) - 1) > 0 &&
                      // What does not convert leaves fewer than three.  NOLINTNEXTLINE(cert-err34-c)
                      std::sscanf(text, "%31s %d %31s", planned, &number, error) == 3 &&
                      std::strcmp(planned, call) == 0;
  const bool is_due = counts && ++calls == number;
  errno = before;
  if (is_due) {
    calls = 0;
    syscall(SYS_ftruncate, plan, 0);
    syscall(SYS_pwrite64, plan, "due\n", 4, 0);
    errno = ErrorOf(error);
  }
  if (plan >= 0) syscall(SYS_close, plan);
  return is_due;
}

template <typename Result, typename... Arguments>
Result Next(const char* name, Arguments... arguments) {
  return reinterpret_cast<Result (*)(Arguments...)>(dlsym(RTLD_NEXT, name))(arguments...);
}

}  // namespace

// The library's own names for the parameters are reserved words.
// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name)
extern "C" {

ssize_t read(int fd, void* buffer, size_t size) {
  return fd > STDERR_FILENO && Fails("read") ? -1 : syscall(SYS_read, fd, buffer, size);
}

ssize_t write(int fd, const void* buffer, size_t size) {
  const bool fails = fd > STDERR_FILENO && Fails("write");
  return fails && errno != kHalf ? -1 : syscall(SYS_write, fd, buffer, fails ? size / 2 : size);
}

int creat(const char* path, mode_t mode) { return Fails("creat") ? -1 : Next<int>("creat", path, mode); }
int fsync(int fd) { return Fails("fsync") ? -1 : Next<int>("fsync", fd); }
int syncfs(int fd) noexcept { return Fails("syncfs") ? -1 : Next<int>("syncfs", fd); }
int rmdir(const char* path) noexcept { return Fails("rmdir") ? -1 : Next<int>("rmdir", path); }
int remove(const char* path) noexcept { return Fails("remove") ? -1 : Next<int>("remove", path); }
pid_t fork() noexcept { return Fails("fork") ? -1 : Next<pid_t>("fork"); }
DIR* opendir(const char* path) { return Fails("opendir") ? nullptr : Next<DIR*>("opendir", path); }
void sync() noexcept {
  if (!Fails("sync")) syscall(SYS_sync);
}

void* malloc(size_t size) noexcept {
  static const auto next = reinterpret_cast<void* (*)(size_t)>(dlsym(RTLD_NEXT, "malloc"));
  return Fails(size >= kLargeBlock ? "large-malloc" : "malloc") ? nullptr : next(size);
}

void* calloc(size_t count, size_t size) noexcept {
  static const auto next = reinterpret_cast<void* (*)(size_t, size_t)>(dlsym(RTLD_NEXT, "calloc"));
  return Fails("malloc") ? nullptr : next(count, size);
}

}  // extern "C"
// NOLINTEND(readability-inconsistent-declaration-parameter-name)
