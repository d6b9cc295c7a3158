// Makes one block of memory fail. The plan stands in /tmp/fault: "N SIZE", the n-th block of at least so many bytes.
// When that was asked for, "due" stands there for the plan. Counting begins anew with each plan.
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

namespace {

/// @return whether the block fails; errno is set. The calls below must not come back here, so they are the kernel's
/// own.
bool Fails(std::size_t size) {
  static int blocks = 0;  // of the size that is planned
  const int before = errno;
  char text[64] = "";
  int number = 0;
  std::size_t least = 0;
  const long plan = syscall(SYS_openat, AT_FDCWD, "/tmp/fault", O_RDWR | O_CLOEXEC);
  if (plan < 0) blocks = 0;
  const bool counts = plan >= 0 && syscall(SYS_read, plan, text, sizeof(text) - 1) > 0 &&
                      // What does not convert leaves fewer than two.  NOLINTNEXTLINE(cert-err34-c)
                      std::sscanf(text, "%d %zu", &number, &least) == 2 && size >= least;
  const bool is_due = counts && ++blocks == number;
  if (is_due) {
    blocks = 0;
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
  return Fails(size) ? nullptr : next(size);
}

void* calloc(size_t count, size_t size) noexcept {
  static const auto next = reinterpret_cast<void* (*)(size_t, size_t)>(dlsym(RTLD_NEXT, "calloc"));
  return Fails(count * size) ? nullptr : next(count, size);
}

}  // extern "C"
