#include "pkg/install/system_image.h"

#include <fcntl.h>
#include <unistd.h>

#include <utility>

#include "pkg/install/cpio_unpack.h"
#include "pkg/install/process_runner.h"
#include "util/fixed_text.h"
#include "util/new_file.h"
#include "util/unique_handle.h"

namespace {

constexpr char kScratchDirectory[] = "/tmp/";
constexpr mode_t kScratchMode = 0600;
constexpr std::size_t kScratchRoom = sizeof(kScratchDirectory) + kImageNameRoom;
constexpr char kRoot[] = "/";

bool WriteScratchFile(const char* path, SystemImage& image) {
  const UniqueText data = std::move(image.data);  // what unpacks it needs the memory
  UniqueFd file(CreateAnew(path, kScratchMode));
  return file && WriteAll(file.Get(), data.get(), image.size) && close(file.Release()) == 0;
}

}  // namespace

std::uint32_t UnpackSystemImage(SystemImage& image) {
  FixedText<kScratchRoom> path;
  path.Append("%s%s", kScratchDirectory, image.name);
  if (WriteScratchFile(path.Text(), image))
    (void)PKG_CpioUnpackerProc(path.Text(), kRoot);
  else
    (void)unlink(path.Text());  // an absent file is what is wanted
  return RemoveWithTool(path.Text());
}

void DropCaches() {
  const UniqueFd setting(open("/proc/sys/vm/drop_caches", O_WRONLY | O_CLOEXEC));
  if (setting) (void)!write(setting.Get(), "3", 1);  // memory that stays in use is no failure
}
