#include "pkg/install/drop_caches.h"

#include <fcntl.h>
#include <unistd.h>

#include "util/unique_handle.h"

void DropCaches() {
  const UniqueFd setting(open("/proc/sys/vm/drop_caches", O_WRONLY | O_CLOEXEC));
  if (setting) {
    (void)!write(setting.Get(), "3", 1);  // memory that stays in use is no failure
  }
}
