#include "pkg/install/install_load.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <utility>

#include "fs/medium.h"
#include "fs/names/name_rules.h"
#include "fs/path.h"
#include "net/ip_stack.h"
#include "net/ipv4_address.h"
#include "pkg/format/compatibility.h"
#include "pkg/format/package_format.h"
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
#include "term/terminal.h"
#include "util/fixed_text.h"
#include "util/result.h"

namespace {

constexpr char kNotPrimary[] = "The startup software images must be in the primary partition.\r";
constexpr char kChecking[] = "Check package %s ...\r\n";
constexpr char kNoSystemPackage[] = "Package %s is not a system package.\r\n";
constexpr char kInvalidFile[] = "File %s is invalid.\r\n";
constexpr char kNotCompliant[] = "This system image is not compliant with the boot image.\r";
constexpr char kExtracting[] = "Extracting package ...\r";
constexpr char kOperationFailed[] = "Operation failed!\r";
constexpr char kNoImage[] = "\r\nOperation failed!\r";
constexpr char kLoading[] = "\r\nLoading...\r";
constexpr char kExitFailed[] = "Exit failed.\r";

constexpr const char* kUnloadIpStack[] = {"/bin/ifconfig m-eth0 down", "/bin/ifconfig lo down", "/bin/rmmod ipstack"};

/// Whether packages may lie where a typed name leads to.
bool IsOnPackageMedium(const char* name) {
  char full[kNameRoom];
  const bool is_legal = ESH_InputName2FullValidName(name, 0, sizeof(full), full) == kSuccess;
  return ESH_IsDeviceForPkgm(is_legal ? full : name) == 1;
}

/// Checks what can be told before an image is looked for. @return 0 or the code of what is wrong.
std::uint32_t CheckSystemPackage(const char* name, PKG_READER_S* package) {
  if (package->head.attributes != 0 || package->head.package_type != kSystemPackage) {
    std::printf(kNoSystemPackage, name);
    return ESH_ERR_FAIL;
  }
  const std::uint32_t verdict = VerifyWithDots(name, package);
  if (verdict != kSuccess) {
    std::printf(kCorrupted, name);
    return verdict;
  }
  const UniqueLines list = OpenPackageText(package, kCompatibilityFile);
  if (list == nullptr) {
    std::printf(kInvalidFile, name);
    return ESH_ERR_FAIL;
  }
  char running[kRunningVersionRoom];
  ReadRunningVersion(running);
  char product_version[kProductVersionRoom];
  const UniqueLines description = OpenPackageText(package, kDescriptionFile);
  ReadProductVersion(description.get(), product_version);
  if (!IsCompliant(list.get(), product_version, running)) {
    std::puts(kNotCompliant);
    return ESH_ERR_FAIL;
  }
  return kSuccess;
}

/// Loads this device's image. @param path full name of the package.
std::uint32_t LoadImage(UniquePackage package, const char* path) {
  std::puts(kExtracting);
  ESH_TERM_OFlush();  // what follows works for long
  const std::uint32_t device = DeviceCode();
  if (device == kUnknownTag) {
    std::puts(kOperationFailed);
    return ESH_ERR_FAIL;
  }
  SystemImage image = TakeSystemImage(package.get(), device);
  package.reset();
  if (image.data == nullptr) {
    std::puts(kNoImage);
    DropCaches();
    std::puts(kOperationFailed);  // a second time
    return ESH_ERR_FAIL;
  }
  const std::uint32_t unpacked = UnpackSystemImage(image);
  DropCaches();
  if (unpacked != kSuccess) {
    std::puts(kOperationFailed);
    return unpacked;
  }
  return WriteChangeList(path);
}

/// Leaves the console to the system that was loaded.
[[noreturn]] void EndShell() {
  (void)unlink(kKnownHosts);  // the loaded system's hosts are others; absent is what is wanted
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
  if (package == nullptr) {
    std::printf(kCorrupted, name);
    return ESH_ERR_FAIL;
  }
  const std::uint32_t verdict = CheckSystemPackage(name, package.get());
  return verdict == kSuccess ? LoadImage(std::move(package), path) : verdict;
}

std::uint32_t ESH_ProcInstallLoad() {
  char name[sizeof(g_szPkgFlie)];
  CopyText(name, g_szPkgFlie);
  if (name[0] == '\0') return ESH_ERR_FAIL;
  if (!IsOnPackageMedium(name)) {
    std::puts(kNotPrimary);
    return ESH_ERR_FAIL;
  }
  const std::uint32_t loaded = ESH_PKG_InstallLoadSystem(name);
  if (loaded != kSuccess) return loaded;
  std::puts(kLoading);
  if (ESH_IsExistIpstackKo() == 0) EndShell();
  const std::uint32_t unloaded = UnloadIpStack();
  if (unloaded == kSuccess) EndShell();
  std::puts(kExitFailed);
  return unloaded;
}
