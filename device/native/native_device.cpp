#include "device/native/native_device.h"

#include <sys/mount.h>
#include <sys/stat.h>

#include <filesystem>
#include <system_error>
#include <utility>

#include "device/board/board_device.h"
#include "device/board/namespaces.h"
#include "device/native/first_process.h"
#include "device/native/host_programs.h"

namespace device {
namespace {

class NativeKind final : public DeviceKind {
 public:
  std::string Plan(const BootOptions& options, RootPlan& plan) const override {
    const HostPrograms programs;
    if (std::string problem = PlanRoot(options, ESH_DEVICE_FILES "/native/rootfs", programs, plan); !problem.empty())
      return problem;
    return AddProgram(ESH_DEVICE_UN7Z, kUn7zPath, programs, plan);
  }

  std::vector<std::string> NeededOfHost() const override { return {}; }

  /// A file system in memory whose size is limited. Links on it are not followed, as on every medium that may come from
  /// anywhere; whatever the first process mounts of it takes that over.
  std::string MakeMedium(const Medium& medium, const std::string& place) const override {
    namespace fs = std::filesystem;
    (void)mkdir(place.c_str(), 0755);
    const std::string size = "mode=755,size=" + std::to_string(medium.bytes);
    constexpr unsigned long kFlags = MS_NOSUID | MS_NODEV | MS_NOSYMFOLLOW;
    if (std::string problem = Mount(medium.name, place, "tmpfs", kFlags, size); !problem.empty()) return problem;
    if (medium.contents.empty()) return "";
    std::error_code error;
    fs::copy(medium.contents, place, fs::copy_options::recursive | fs::copy_options::copy_symlinks, error);
    return error ? "cannot fill " + medium.name + " from " + medium.contents + ": " + error.message() : "";
  }

  /// What is open stays usable, as memory does; by name nothing is found any more.
  std::string PullCommand(const std::string& medium) const override {
    return "umount -l " + ShellQuoted("/mnt/" + medium);
  }

  [[noreturn]] void RunFirstProcess(const BootOptions& options, const RootPlan& plan,
                                    PowerSupply supply) const override {
    RunNativeFirstProcess(options, plan, std::move(supply));
  }

  /// A boot takes a small part of a second.
  std::chrono::milliseconds BootTime() const override { return std::chrono::milliseconds(20000); }
};

}  // namespace

std::unique_ptr<Device> MakeNativeDevice(BootOptions options) {
  return MakeBoardDevice(std::make_unique<NativeKind>(), std::move(options));
}

}  // namespace device
