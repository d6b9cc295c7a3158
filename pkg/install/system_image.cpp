#include "pkg/install/system_image.h"

#include <fcntl.h>
#include <unistd.h>

#include "pkg/format/contained_file.h"
#include "pkg/format/package_format.h"
#include "pkg/format/package_reader.h"
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

/// The first row with an image for a device. One whose head is damaged is passed over.
const PackageFileEntry* FindImage(PKG_READER_S* package, std::uint32_t device) {
  for (std::uint32_t i = 0; i < package->head.file_count; ++i) {
    const PackageFileEntry& entry = package->head.files[i];
    if (entry.file_id != kSystemImageFile) continue;
    const UniqueFileHead head(FileHeadCreateByFileDesc(package, &entry));
    if (head != nullptr && head->device_code == device) return &entry;
  }
  return nullptr;
}

bool WriteScratchFile(const char* path, const SystemImage& image) {
  UniqueFd file(CreateAnew(path, kScratchMode));
  return file && WriteAll(file.Get(), image.data.get(), image.size) && close(file.Release()) == 0;
}

}  // namespace

SystemImage TakeSystemImage(PKG_READER_S* package, std::uint32_t device) {
  SystemImage image;
  const PackageFileEntry* entry = FindImage(package, device);
  if (entry != nullptr) {
    image.data.reset(
        static_cast<char*>(GetFileFromReadHeadByFileDesc(entry, package, sizeof(image.name), &image.size, image.name)));
  }
  if (!IsPlainImageName(image.name)) image.data.reset();
  return image;
}

std::uint32_t UnpackSystemImage(SystemImage& image) {
  FixedText<kScratchRoom> path;
  path.Append("%s%s", kScratchDirectory, image.name);
  const bool is_written = WriteScratchFile(path.Text(), image);
  image.data.reset();  // what unpacks it needs the memory
  if (is_written)
    (void)PKG_CpioUnpackerProc(path.Text(), kRoot);
  else
    (void)unlink(path.Text());  // an absent file is what is wanted
  return RemoveWithTool(path.Text());
}

void DropCaches() {
  const UniqueFd setting(open("/proc/sys/vm/drop_caches", O_WRONLY | O_CLOEXEC));
  if (setting) (void)!write(setting.Get(), "3", 1);  // memory that stays in use is no failure
}
