// Makes a block of memory fail. The plan stands in /tmp/fault: the block's number and the process that asks for it,
// which counts from the plan on. When it was asked for, "due" stands there.
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

namespace {

/// @return whether the block fails; errno is set. The calls below must not come back here, so they are the kernel's
/// own.
bool Fails() {
  static int blocks = 0;
  const int before = errno;
  char text[64] = "";
  char* rest = text;
  const long plan = syscall(SYS_openat, AT_FDCWD, "/tmp/fault", O_RDWR | O_CLOEXEC);
  if (plan < 0) blocks = 0;
  const bool has_plan = plan >= 0 && syscall(SYS_read, plan, text, sizeof(text) - 1) > 0;
  const long number = std::strtol(text, &rest, 10);
  const bool is_due = has_plan && std::strtol(rest, nullptr, 10) == syscall(SYS_getpid) && ++blocks == number;
  if (is_due) {
    syscall(SYS_ftruncate, plan, 0);
    syscall(SYS_pwrite64, plan, "due\n", 4, 0);
  }
  if (plan >= 0) syscall(SYS_close, plan);
  errno = is_due ? ENOMEM : before;
  return is_due;
}

}  // namespace

extern "C" {

void* malloc(size_t size) noexcept {
  static const auto next = reinterpret_cast<void* (*)(size_t)>(dlsym(RTLD_NEXT, "malloc"));
  return Fails() ? nullptr : next(size);
}

// The library's own names for the parameters are reserved words.
void* calloc(size_t count, size_t size) noexcept {  // NOLINT(readability-inconsistent-declaration-parameter-name)
  static const auto next = reinterpret_cast<void* (*)(size_t, size_t)>(dlsym(RTLD_NEXT, "calloc"));
  return Fails() ? nullptr : next(count, size);
}

}  // extern "C"
