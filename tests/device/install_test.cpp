#include <tuple>

#include "pkg/format/package_format.h"
#include "tests/device/operator_console.h"
#include "tests/support/package_fixture.h"
#include "tools/mkpkg/device_key.h"

namespace {

constexpr char kPackage[] = "/mnt/flash:/system.bin";
constexpr char kInstall[] = "install load flash:/system.bin";
constexpr char kDisplay[] = "display install package flash:/system.bin";
const std::string kBegin = "Check package flash:/system.bin ...\n";
const std::string kVerified = "Verifying the file flash:/system.bin ...Done.\n";
constexpr char kDescription[] = "Platform version: 7.1.075\nProduct version: Release 0612\n";

/// A device with a maker's key, its boot image on flash:, and packages made for it, good ones and others; what the
/// shell makes of them, and of tools that fail, is the same on every kernel.
struct NativeInstall : OperatorConsole {
  void SetUp() override {
    std::string key_file;
    ASSERT_EQ(mkpkg::EncodeDeviceKey(PackageTest::MakerKey(), mkpkg::kShortKeyFile, key_file), "");
    Replace("/etc/sign_pub_key/maker.key", key_file);
    options.media.push_back({"usba1:", 1 << 20, ""});
  }

  /// @param size of its description, which is packed; as large as one may be.
  void PutBootImage(std::uint32_t size = 1 << 20) {
    std::string description = kDescription;
    description.resize(size, '\n');
    mkpkg::PackageContents boot = PackageTest::Contents();
    boot.files[1].data = PackageTest::Compressed(mkpkg::Compression::k7z, description);
    boot.files[1].packing = kPacked7z;
    boot.files[1].unpacked_size = size;
    Put("/mnt/flash:/boot.bin", Signed(boot));
  }

  /// The archive of the loaded system, which consists of its program.
  std::string Archive() {
    return Run(
        "mkdir -p /run/image/sbin && cd /run/image && printf '#!/bin/sh\necho \"Loaded: $1\"\nexec sleep 60\n' > "
        "sbin/tessaro && chmod 755 sbin/tessaro && find . | cpio -o -H newc");
  }

  mkpkg::PackageContents Contents() {
    mkpkg::PackageContents contents = PackageTest::Contents();
    contents.product_tag = 0x00005100;  // as in the device's version file, and the device's code
    contents.files[0].data = "[boot]\n7.0.1\n 7.1.075 \n";
    contents.files[1].data = kDescription;
    contents.files[3].data = PackageTest::Compressed(mkpkg::Compression::kGz, Archive());
    contents.files[3].device_code = 0x00000051;
    return contents;
  }

  static std::string Signed(const mkpkg::PackageContents& contents) {
    return PackageTest::Sign(PackageTest::Compose(contents), {.key_name = "maker"});
  }

  void Put(const std::string& path, const std::string& bytes) { ASSERT_TRUE(Device().WriteFile(path, bytes)); }

  /// @return what a load of this package prints.
  std::string Install(const mkpkg::PackageContents& contents) {
    Put(kPackage, Signed(contents));
    return Command(kInstall);
  }
};

TEST_F(NativeInstall, RefusesWhatIsNotForThisDevice) {
  UseDevice();
  PutBootImage();
  const std::string corrupted = "flash:/system.bin is corrupted.\n";
  mkpkg::PackageContents contents = Contents();
  // Each is found before what is wrong already.
  contents.files[3].name = "$(ls>x).gz";  // for /bin/sh
  EXPECT_EQ(Install(contents), kBegin + kVerified + "Extracting package ...\n\nOperation failed!\nOperation failed!\n");
  contents.files.erase(contents.files.begin());
  EXPECT_EQ(Install(contents), kBegin + kVerified + "File flash:/system.bin is invalid.\n");
  contents.product_tag = 1;
  EXPECT_EQ(Install(contents), kBegin + kVerified + corrupted);
  contents.attribute = 1;
  EXPECT_EQ(Install(contents), kBegin + "Package flash:/system.bin is not a system package.\n");
  PutBootImage((1 << 20) + 1);
  EXPECT_EQ(Install(Contents()), kBegin + kVerified + "This system image is not compliant with the boot image.\n");
  std::string package = Signed(Contents());
  package[kMainHeadSize + kFileHeadSize] ^= 1;
  Put(kPackage, package);
  EXPECT_EQ(Command(kDisplay), kVerified + corrupted);
  EXPECT_EQ(Run("ls -d /sbin/tessaro /var/pkg /etc/pkg/TempFile /tmp/* /mnt/flash:/b* 2> /dev/null; true"),
            "/mnt/flash:/boot.bin\n");
}

TEST_F(NativeInstall, RefusesNamesThatAreNoPackages) {
  UseDevice();
  PutBootImage();
  Run("cd /mnt/flash:; mkdir dir.bin; touch text.txt a~1.bin /mnt/usba1:/a.bin");
  ExpectAll({
      {"install load usba1:/a.bin", "", "The startup software images must be in the primary partition.\n"},
      {"install load text.txt", "", "Check package text.txt ...\ntext.txt: Invalid file name.\n"},
      {"install load gone.BIN", "", "Check package gone.BIN ...\nThe package gone.BIN doesn't exist. \n"},
  });
  EXPECT_EQ(Press("install load flash:/?", "<boot>"), "install load flash:/?\n  flash:/boot.bin\n\n<boot>");
}

TEST_F(NativeInstall, ShowsWhatAPackageIs) {
  UseDevice();
  PutBootImage();
  mkpkg::PackageContents contents = Contents();
  contents.files[1].data =
      "[Package]\r\nVendor: Kelvane Inc\r\n Vendor: indented\r\nSecret: x\r\nversion TYPE: release\r\n"
      "VERSION type: RELEASE candidate\r\nSupported boards: all\r\n[Component]\r\nComponent: c\r\nDescription: d\r\n"
      "Version type: test\r\n";
  Put(kPackage, Signed(contents));
  EXPECT_EQ(Command(kDisplay),
            kVerified +
                "  flash:/system.bin\n  [Package]\n  Vendor: Vantrel\n  Supported boards: all\n  [Component]\n"
                "  Component: c\n  Description: d\n  Version type: test\n\n");
  contents.files.erase(contents.files.begin() + 1);
  Put(kPackage, Signed(contents));
  EXPECT_EQ(Command(kDisplay), kVerified + "  flash:/system.bin\n\nOperation failed! \n");
}

/// Faults on the way: what is broken before the load, and what the load then makes of it.
TEST_F(NativeInstall, ClaimsNoSuccessThatItDoesNotHave) {
  options.files.push_back({"/lib/modules/ipstack.ko", std::nullopt});
  const std::string extracting = kBegin + kVerified + "Extracting package ...\n";
  // What is printed, "" where the load goes on to its end, and whether the image is unpacked.
  const std::tuple<const char*, const char*, std::string, bool> cases[] = {
      {"rm is killed", "rm /bin/rm; printf '#!/bin/sh\nkill -9 $$\n' > /bin/rm; chmod 755 /bin/rm",
       extracting + "Operation failed!\n", true},
      {"no place for the record", "touch /var/pkg", extracting, true},
      {"no device tag", "sed -i /DeviceTag/d /etc/pkg/version/1_0_package", extracting + "Operation failed!\n", false},
      // These the steps do not look at: the image stays packed and the load ends like any other.
      {"gunzip is missing", "rm /bin/gunzip", "", false},
      {"no place for the script", "mkdir /etc/pkg/TempFile", "", false},
      {"a planted link", "ln -s /mnt/flash:/victim /tmp/system.gz; echo safe > /mnt/flash:/victim", "", true},
  };
  for (const auto& [why, fault, printed, is_unpacked] : cases) {
    NewDevice();
    BootToPrompt();
    PutBootImage();
    Put(kPackage, Signed(Contents()));
    Run(fault);
    if (printed.empty()) {
      Press(std::string(kInstall) + "\r", "Loading...");
      EXPECT_EQ(Outcome(), device::Outcome::kHandedOver) << why;
    } else {
      EXPECT_EQ(Command(kInstall), printed) << why;
      EXPECT_EQ(Run("ls /var/pkg/change.list* 2> /dev/null; true"), "") << why;
    }
    EXPECT_EQ(Run("ls /sbin/tessaro 2> /dev/null; true"), is_unpacked ? "/sbin/tessaro\n" : "") << why;
    EXPECT_EQ(Run("cat /mnt/flash:/victim 2> /dev/null || echo safe"), "safe\n") << why;
  }
}

TEST_F(NativeInstall, StaysWhenTheNetworkDoesNotGo) {
  Replace("/bin/rmmod", "#!/bin/sh\nexit 1\n");
  BootToPrompt();
  PutBootImage();
  mkpkg::PackageContents contents = Contents();
  contents.files.back().name = "system.lzma";
  contents.files.back().data = PackageTest::Compressed(mkpkg::Compression::kLzma, Archive());
  EXPECT_TRUE(Install(contents).ends_with("\nLoading...\nExit failed.\n"));
  EXPECT_EQ(Run("ls -d /sbin/tessaro /var/pkg/* /etc/pkg/TempFile /tmp/* 2> /dev/null; true"),
            "/sbin/tessaro\n/var/pkg/change.list\n")
      << "the image is loaded all the same, and no file is left on the way";
}

TEST_F(NativeInstall, NeitherCtrlCNorAHangUpLeavesHalfASystem) {
  Replace(
      "/bin/gunzip",
      "#!/bin/sh\nuntil [ -e /tmp/go ] || [ $((n += 1)) = 200 ]; do sleep 0.1; done\nexec /bin/busybox gunzip $@\n");
  BootToPrompt();
  PutBootImage();
  Put(kPackage, Signed(Contents()));
  Press(std::string(kInstall) + "\r", "Extracting package ...");
  for (int i = 0; i < 5; ++i, Listen(std::chrono::milliseconds(50))) Type(kCtrlC);
  EXPECT_EQ(Run("stat -c %a /tmp/system.gz; kill -HUP $(pidof gunzip); touch /tmp/go"), "600\n");
  Expect("Loaded: flash:/system.bin");
}

/// A device with the sample packages, which the package tool made.
struct SamplePackages : OperatorConsole {};

TEST_F(SamplePackages, LoadAndTakeOver) {
  device::FillWithSamples(options.media);
  BootToPrompt();
  Run("touch /root/.ssh/known_hosts");
  for (const std::string package : {"system.bin", "system-xz.bin", "system-7z.bin"}) {
    Press("install load " + package + "\r", "Loaded package: flash:/" + package);
    Run("rm /sbin/tessaro /etc/tessaro-version");  // the next package brings its own
    EXPECT_EQ(Outcome(), device::Outcome::kHandedOver);
    const std::string record = "flash:/" + package;
    EXPECT_EQ(Device().ReadFile("/var/pkg/change.list"), record + std::string(64 - record.size(), '\0'));
    EXPECT_EQ(Run("ls -A /tmp /root/.ssh; grep -c ipstack /proc/modules; ls /sys/class/net | grep m-eth0; true"),
              "/root/.ssh:\n\n/tmp:\n0\n");
    if (!IsArm64())  // there it is a kernel's, which lets nobody read it
      EXPECT_EQ(Run("cat /proc/sys/vm/drop_caches"), "3\n");
    Press("boot\r", "<boot>");
  }
}

}  // namespace
