#include <sys/wait.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>

#include "tests/support/package_fixture.h"
#include "tools/mkpkg/files.h"

namespace {

/// The tool as a maker calls it.
struct Mkpkg : PackageTest {
  void SetUp() override {
    PackageTest::SetUp();
    setenv("ASAN_OPTIONS", "detect_leaks=0", 1);  // for which the tool would have to find itself in /proc
    WriteFile("/tmp/good.bin", GoodPackage());
    WriteFile("/tmp/boot.bin", Compose(Contents()));
    std::filesystem::create_symlink("good.bin", "/tmp/link.bin");
  }

  /// @return what the tool prints, behind its exit status.
  static std::string Say(const std::string& arguments, const std::string& before = "") {
    // Where the private root keeps the machine's files.
    const std::string tool = "cd /tmp; " + before + "/host" ESH_MKPKG " > said 2> warned ";
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
      {check + "--name=x:/a boot.bin",
       "1 display install package: refused at step \"typed-name\": x:/a is no name below a medium flash, cf or usb, of "
       "63 "
       "characters at most\n"},
      {check + "gone.bin", "3 "},
      {check + "link.bin", "1 display install package: accepted\n"},
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
      {"info --json good.bin > /dev/full", "4 "},
      {"--help", "0 usage: mkpkg COMMAND"},
      {"nonsense", "2 "},
      {"", "2 "},
  };
  for (const auto& [arguments, said] : kCalls) {
    EXPECT_EQ(Say(arguments).find(said), 0U) << arguments << ": " << ReadFile("/tmp/said");
    EXPECT_TRUE(*said < '2' || ReadFile("/tmp/warned").starts_with("mkpkg: ")) << arguments;
  }
  EXPECT_EQ(ReadFile("/tmp/out/system.gz"), "the image");
}

TEST_F(Mkpkg, SaysWhatIsWrong) {
  WriteFile("/tmp/no.bin", "no package");
  constexpr std::pair<const char*, const char*> kCalls[] = {
      {"sign --key-name='a b' --write-block=block good.bin", "the key name must be printable and hold no blank"},
      {"sign --write-block=block good.bin", "--key-name or --in-head is missing"},
      {"sign --key-name=a --write-block=block no.bin", "no.bin: it is no package"},
      {"key device gone.pem key", "cannot read gone.pem: No such file or directory"},
      {"key new --exponent=65535 a b", "the exponent must be an odd number from 65537 on"},
      {"key new --exponent=65538 a b", "the exponent must be an odd number from 65537 on"},
      {"build good.bin", "operand PACKAGE is missing"},
      {"check --version-file=good.bin --keys=gone good.bin", "gone is no directory"},
  };
  for (const auto& [arguments, warned] : kCalls) {
    EXPECT_NE(Say(arguments), "0 ") << arguments;
    EXPECT_TRUE(ReadFile("/tmp/warned").starts_with(std::string("mkpkg: ") + warned)) << ReadFile("/tmp/warned");
  }
}

TEST_F(Mkpkg, GivesAnArchiveTheTimeOfItsSources) {
  WriteFile("/tmp/root/file", "text");
  WriteFile("/tmp/d", "product-tag: 1\n[image]\ndevice-tag: 1\ndirectory: root\ncompression: none\n");
  unsetenv("SOURCE_DATE_EPOCH");
  EXPECT_EQ(Say("build d unset"), "0 ");
  for (const auto& [time, status] :
       {std::pair("0", "0 "), {"86399", "0 "}, {"-5", "3 "}, {"", "3 "}, {"4294967296", "3 "}}) {
    setenv("SOURCE_DATE_EPOCH", time, 1);
    EXPECT_EQ(Say(std::string("build d at") + time), status) << time;
  }
  EXPECT_EQ(ReadFile("/tmp/unset"), ReadFile("/tmp/at0"));
  unsetenv("SOURCE_DATE_EPOCH");
  EXPECT_NE(ReadFile("/tmp/at86399").find("0001517f"), std::string::npos) << "the time of the archive's entries";
}

TEST_F(Mkpkg, WithoutRoomLeavesWhatWasThere) {
  const std::string before = GoodPackage(true);
  WriteFile("/tmp/p.bin", before);
  EXPECT_EQ(Say("key new k.pem public.pem"), "0 ");
  const std::string full = "trap '' XFSZ; ulimit -f " + std::to_string(before.size() / 512 + 1) + "; ";
  EXPECT_EQ(Say("sign --key-name=maker --private-key=k.pem p.bin", full), "4 ");
  EXPECT_EQ(ReadFile("/tmp/p.bin"), before);
  WriteFile("/tmp/d", "product-tag: 1\n");
  EXPECT_EQ(Say("build d new.bin", "trap '' XFSZ; ulimit -f 2; "), "4 ");
  EXPECT_EQ(ReadFile("/tmp/warned"), "mkpkg: cannot write new.bin: File too large\n");
  EXPECT_FALSE(std::filesystem::exists("/tmp/new.bin"));
}

TEST_F(Mkpkg, InterruptedLeavesWhatWasThere) {
  WriteFile("/tmp/place/file", "old");
  const mkpkg::FillFile press_ctrl_c = [](int /*fd*/) { return raise(SIGINT) == 0 ? "" : "it goes on"; };
  EXPECT_EXIT((void)mkpkg::WriteFile("/tmp/place/file", press_ctrl_c, 0666, true), testing::KilledBySignal(SIGINT), "");
  EXPECT_EQ(ReadFile("/tmp/place/file"), "old");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator("/tmp/place"), {}), 1) << "a temporary file is left";
}

}  // namespace
