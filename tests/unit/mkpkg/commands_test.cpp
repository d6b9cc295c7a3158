#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>

#include "tests/support/package_fixture.h"
#include "tools/mkpkg/files.h"

namespace {

bool g_is_interrupted = false;

}  // namespace

/// Stands in for the C library's: a maker presses Ctrl+C while a file is written.
extern "C" int fsync(int /*fd*/) { return g_is_interrupted ? raise(SIGINT) : 0; }

namespace {

/// The tool as a maker calls it.
struct Mkpkg : PackageTest {
  void SetUp() override {
    PackageTest::SetUp();
    setenv("ASAN_OPTIONS", "detect_leaks=0", 1);  // for which the tool would have to find itself in /proc
    mkpkg::PackageContents contents = Contents();
    contents.files[0].data = "[boot]\nV1\n";
    WriteFile("/tmp/good.bin", Sign(Compose(contents), {.key_name = "maker"}));
    contents.files[1].data = "Platform version: V1\nProduct version: R1\n";
    WriteFile("/tmp/boot.bin", Compose(contents));
  }

  /// @return what the tool prints, behind its exit status.
  static std::string Say(const std::string& arguments) {
    // Where the private root keeps the machine's files.
    const std::string tool = "cd /tmp; /host" ESH_MKPKG " > said 2> warned ";
    const int status = std::system((tool + arguments).c_str());  // NOLINT(cert-env33-c)
    return std::to_string(WEXITSTATUS(status)) + " " + ReadFile("/tmp/said");
  }
};

TEST_F(Mkpkg, TellsByItsExitStatusHowItWent) {
  const std::string check = "check --version-file=/etc/pkg/version/1_0_package --keys=/etc/sign_pub_key ";
  const std::pair<std::string, const char*> kCalls[] = {
      {check + "--boot-image=boot.bin good.bin", "0 display install package: accepted\ninstall load: accepted\n"},
      {check + "good.bin", "1 display install package: accepted\ninstall load: refused at step \"compatible\""},
      {check + "boot.bin", "1 display install package: refused at step"},
      {check + "gone.bin", "3 "},
      {"check good.bin", "2 "},
      {"info good.bin", "0 "},
      {"info gone.bin", "3 "},
      {"info said", "3 "},
      {"info", "2 "},
      {"info good.bin good.bin", "2 "},
      {"info --nonsense good.bin", "2 "},
      {"info --help", "0 usage: mkpkg info"},
      {"extract good.bin out", "0 out/compatible.txt\nout/description.txt\nout/other.gz\nout/system.gz\n"},
      {"extract good.bin out", "4 "},
      {"extract good.bin gone/out", "4 "},
      {"info good.bin > /dev/full", "4 "},
      {"--help", "0 usage: mkpkg COMMAND"},
      {"nonsense", "2 "},
      {"", "2 "},
  };
  for (const auto& [arguments, said] : kCalls)
    EXPECT_EQ(Say(arguments).find(said), 0U) << arguments << ": " << ReadFile("/tmp/said");
  EXPECT_EQ(ReadFile("/tmp/out/system.gz"), "the image");
  const std::string info = Say("info good.bin");
  for (const char* line : {"\n  device tag   0x0A0B0C0D\n", "\n  | Vendor: Kelvane\n", "  9 bytes, stored\n"})
    EXPECT_NE(info.find(line), std::string::npos) << line << info;
}

TEST_F(Mkpkg, GivesAnArchiveTheTimeOfItsSources) {
  WriteFile("/tmp/root/file", "text");
  WriteFile("/tmp/d", "product-tag: 1\n[image]\nname: i.gz\ndevice-tag: 1\ndirectory: root\ncompression: gz\n");
  for (const auto& [time, listed] : {std::pair("", "1970-01-01 00:00:00"), {"86399", "1970-01-01 23:59:59"}}) {
    setenv("SOURCE_DATE_EPOCH", time, 1);
    if (*time == '\0') unsetenv("SOURCE_DATE_EPOCH");
    EXPECT_EQ(Say("build d p.bin"), "0 ");
    EXPECT_EQ(Say("extract p.bin x"), "0 x/i.gz\n");
    ASSERT_EQ(std::system("gunzip -c /tmp/x/i.gz | TZ=UTC busybox cpio -tv > /tmp/said 2>&1"), 0);  // NOLINT
    EXPECT_NE(ReadFile("/tmp/said").find(listed), std::string::npos) << ReadFile("/tmp/said");
    std::filesystem::remove("/tmp/p.bin");
    std::filesystem::remove_all("/tmp/x");
  }
}

TEST_F(Mkpkg, InterruptedLeavesWhatWasThere) {
  WriteFile("/tmp/place/file", "old");
  EXPECT_EXIT(
      {
        g_is_interrupted = true;
        (void)mkpkg::WriteWholeFile("/tmp/place/file", "new");
      },
      testing::KilledBySignal(SIGINT), "");
  EXPECT_EQ(ReadFile("/tmp/place/file"), "old");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator("/tmp/place"), {}), 1) << "a temporary file is left";
}

}  // namespace
