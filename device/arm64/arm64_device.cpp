#include "device/arm64/arm64_device.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "device/arm64/arm64_programs.h"
#include "device/arm64/emulator.h"
#include "device/arm64/machine.h"
#include "device/board/board_device.h"
#include "device/board/package_root.h"

namespace device {
namespace {

constexpr char kBuild[] = ESH_ARM64_BUILD;  // of preset arm64
/// What /init loads, as far as it is not built into the kernel.
constexpr const char* kDrivers[] = {"drivers/virtio/virtio_ring",
                                    "drivers/virtio/virtio",
                                    "drivers/virtio/virtio_mmio",
                                    "drivers/block/virtio_blk",
                                    "drivers/char/virtio_console",
                                    "fs/fat/fat",
                                    "fs/fat/vfat",
                                    "fs/nls/nls_cp437",
                                    "fs/nls/nls_ascii",
                                    "net/core/failover",
                                    "drivers/net/net_failover"};

std::string Built(const std::string& name) { return std::string(kBuild) + "/" + name; }

class Arm64Kind final : public DeviceKind {
 public:
  Arm64Kind() : packages_(PackageRoot("arm64")), kernel_(packages_ + "/boot/vmlinuz") {}

  std::string Plan(const BootOptions& options, RootPlan& plan) const override {
    if (FindEmulator().empty()) return "the emulator is missing (Debian package qemu-system-arm)";
    if (access(kernel_.c_str(), R_OK) != 0) return kernel_ + " is missing; cmake/install-packages.sh arm64 fetches it";
    const Arm64Programs programs(packages_);
    if (std::string problem = PlanRoot(options, ESH_DEVICE_FILES "/arm64/rootfs", programs, plan); !problem.empty())
      return problem;
    for (const std::string driver : kDrivers) {
      const std::string name = driver.substr(driver.rfind('/'));
      const std::string module = packages_ + "/lib/modules/kernel/kernel/" + driver + ".ko";
      if (access(module.c_str(), R_OK) == 0) AddCopy(module, "/lib/modules/drivers" + name + ".ko", plan);
    }
    for (const char* module : {"ipstack.ko", "addon.ko"})
      AddCopy(Built(module), std::string("/lib/modules/") + module, plan);
    return AddProgram(Built("libun7z.so"), kUn7zPath, programs, plan);
  }

  std::vector<std::string> NeededOfHost() const override { return {kernel_}; }

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

  [[noreturn]] void RunFirstProcess(const BootOptions& options, const RootPlan& plan,
                                    PowerSupply supply) const override {
    RunMachine(options, plan, kernel_, std::move(supply));
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
