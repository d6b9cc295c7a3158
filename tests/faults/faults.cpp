// Makes the n-th call of one kind fail. The plan stands in /tmp/fault: "CALL N ENOMEM", or KILL, which kills the
// process. The call that fails leaves "due" for a plan. Counting begins anew with each plan.
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>

namespace {

constexpr char kPlan[] = "/tmp/fault";
constexpr std::size_t kLargeBlock = 32768;  // only a file command asks for that much memory at once

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
    if (std::strcmp(error, "KILL") == 0) raise(SIGKILL);
    errno = ENOMEM;
  }
  if (plan >= 0) syscall(SYS_close, plan);
  return is_due;
}

}  // namespace

// The library's own names for the parameters are reserved words.
// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name)
extern "C" {

ssize_t write(int fd, const void* buffer, size_t size) {
  return fd > STDERR_FILENO && Fails("write") ? -1 : syscall(SYS_write, fd, buffer, size);
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
