#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "device/arm64/machine.h"
#include "device/board/board.h"
#include "device/board/root_files.h"
#include "device/device.h"

namespace device {
namespace {

constexpr char kBuild[] = ESH_ARM64_BUILD;  // of preset arm64
std::string Built(const std::string& name) { return std::string(kBuild) + "/" + name; }

class Arm64Kind final : public DeviceKind {
 public:
  Arm64Kind() : packages_(PackageRoot("arm64")), kernel_(packages_ + "/boot/vmlinuz") {}

  std::string WhatIsMissing() const override {
    if (access(kernel_.c_str(), R_OK) == 0) return "";
    return kernel_ + " is missing; cmake/install-packages.sh arm64 fetches it";
  }

  std::string MakeMedium(const Medium& medium, const std::string& place) const override {
    const UniqueFd image(open(place.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644));
    if (image && ftruncate(image.Get(), static_cast<off_t>(medium.bytes)) == 0) return "";
    return "cannot make " + medium.name + ": " + std::strerror(errno);
  }

  /// Parts the disk from its driver, as a plug that is drawn does. What is mounted stays so, and fails.
  std::string PullCommand(const std::string& medium) const override {
    return "for disk in /sys/block/vd*; do [ \"$(cat $disk/serial)\" = " + ShellQuoted(medium) +
           " ] || continue;"
           " link=$(readlink -f $disk/device); echo ${link##*/} > /sys/bus/virtio/drivers/virtio_blk/unbind; exit;"
           " done; exit 1";
  }

  [[noreturn]] void RunFirstProcess(const BootOptions& options, PowerSupply supply) const override {
    KindFiles files{"arm64", packages_, {{Built("libun7z.so"), kUn7zPath}}};
    for (const char* module : {"ipstack.ko", "addon.ko"})
      files.copies.push_back({Built(module), std::string("/lib/modules/") + module});
    RunMachine(options, files, kernel_, std::move(supply));
  }

  /// A boot takes a few seconds.
  std::chrono::milliseconds BootTime() const override { return std::chrono::milliseconds(120000); }

 private:
  std::string packages_;
  std::string kernel_;
};

}  // namespace

std::unique_ptr<Device> MakeArm64Device(BootOptions options) {
  if (options.shell == DefaultBootOptions().shell) options.shell = Built("esh");
  return MakeBoardDevice(std::make_unique<Arm64Kind>(), std::move(options));
}

}  // namespace device
