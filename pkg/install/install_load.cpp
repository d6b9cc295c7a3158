#include "pkg/install/install_load.h"

#include <cstdio>
#include <cstdlib>

#include "fs/medium.h"
#include "fs/names/name_rules.h"
#include "fs/path.h"
#include "net/ip_stack.h"
#include "net/ipv4_address.h"
#include "net/known_hosts.h"
#include "pkg/format/contained_file.h"
#include "pkg/format/package_judge.h"
#include "pkg/format/package_reader.h"
#include "pkg/format/package_text.h"
#include "pkg/format/product_code.h"
#include "pkg/install/boot_image.h"
#include "pkg/install/change_list.h"
#include "pkg/install/package_check.h"
#include "pkg/install/progress_dots.h"
#include "pkg/install/system_image.h"
#include "shell/command/parameter.h"
#include "shell/tool/child_process.h"
#include "shell/tool/tool_line.h"
#include "term/terminal.h"
#include "util/fixed_text.h"
#include "util/result.h"

namespace {

constexpr char kChecking[] = "Check package %s ...\r\n";
constexpr char kExtracting[] = "Extracting package ...\r";
constexpr char kNotUnpacked[] = "Operation failed!\r\n";
constexpr char kLoading[] = "\r\nLoading...\r";
constexpr char kExitFailed[] = "Exit failed.\r";

constexpr const char* kUnloadIpStack[] = {"/bin/ifconfig m-eth0 down", "/bin/ifconfig lo down", "/bin/rmmod ipstack"};

/// Whether packages may lie where a typed name leads to.
bool IsOnPackageMedium(const char* name) {
  char full[kNameRoom];
  const bool is_legal = ESH_InputName2FullValidName(name, 0, sizeof(full), full) == kSuccess;
  return ESH_IsDeviceForPkgm(is_legal ? full : name) == 1;
}

/// This device, which tells its operator what takes long.
struct OwnDevice final : LoadDevice {
  explicit OwnDevice(const char* typed) : name(typed) {}

  PackageVerdict Verify(PKG_READER_S* package) override { return VerifyWithDots(name, package); }
  UniqueLines OpenText(PKG_READER_S* package, std::uint32_t id) override { return OpenPackageText(package, id); }
  void ReadRunningVersion(char* version) override { ::ReadRunningVersion(version); }
  void BeginImage() override {
    std::puts(kExtracting);
    ESH_TERM_OFlush();  // what follows works for long
  }
  std::uint32_t DeviceTag() override { return DeviceCode(); }
  bool TakeImage(PKG_READER_S* package, const PackageFileEntry& entry) override {
    image.data.reset(static_cast<char*>(
        GetFileFromReadHeadByFileDesc(&entry, package, sizeof(image.name), &image.size, image.name)));
    return image.data != nullptr;
  }

  const char* name;
  SystemImage image;
};

std::uint32_t Refuse(PackageVerdict verdict, const char* name) {
  if (verdict == PackageVerdict::kImage || verdict == PackageVerdict::kImageName) DropCaches();
  return PrintRefusal(verdict, name);
}

/// Leaves the console to the system that was loaded.
[[noreturn]] void EndShell() {
  (void)ForgetKnownHosts();  // the loaded system's are others
  ESH_Exit();
  std::exit(EXIT_SUCCESS);
}

/// Takes the network down, so that the loaded system finds it as at power-on. @return the verdict on all tools.
std::uint32_t UnloadIpStack() {
  ESH_DeleteIPv4Addr();
  std::uint32_t verdict = kSuccess;
  for (const char* tool : kUnloadIpStack) verdict += RunTool(tool);
  return verdict;
}

}  // namespace

std::uint32_t ESH_PKG_InstallLoadSystem(const char* name) {
  std::printf(kChecking, name);
  char path[kNameRoom];
  if (PackageNameProcess(name, path) != kSuccess) return ESH_ERR_FAIL;
  UniquePackage package(PackageReadFileCreateByFile(path));
  OwnDevice device(name);
  const PackageVerdict verdict = package == nullptr ? PackageVerdict::kCannotOpen : JudgeLoad(package.get(), device);
  if (verdict != PackageVerdict::kGood) return Refuse(verdict, name);
  package.reset();
  const std::uint32_t unpacked = UnpackSystemImage(device.image);
  DropCaches();
  if (unpacked == kSuccess) return WriteChangeList(path);
  std::printf(kNotUnpacked);
  return unpacked;
}

std::uint32_t ESH_ProcInstallLoad() {
  char name[sizeof(g_szPkgFlie)];
  CopyText(name, g_szPkgFlie);
  if (name[0] == '\0') return ESH_ERR_FAIL;
  if (!IsOnPackageMedium(name)) return PrintRefusal(PackageVerdict::kFirstUnit, name);
  const std::uint32_t loaded = ESH_PKG_InstallLoadSystem(name);
  if (loaded != kSuccess) return loaded;
  std::puts(kLoading);
  if (ESH_IsExistIpstackKo() == 0) EndShell();
  const std::uint32_t unloaded = UnloadIpStack();
  if (unloaded == kSuccess) EndShell();
  std::puts(kExitFailed);
  return unloaded;
}
