#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <tuple>

#include "pkg/format/compatibility.h"
#include "pkg/format/package_name.h"
#include "pkg/install/boot_image.h"
#include "pkg/install/process_runner.h"
#include "pkg/install/progress_dots.h"
#include "shell/tool/argument_list.h"
#include "tests/support/package_fixture.h"
#include "tests/support/scripted_stdio.h"
#include "util/result.h"
#include "util/vector.h"

namespace {

UniqueLines Lines(const std::string& text) { return UniqueLines(ReadBuffCreateByMem(text.data(), text.size())); }

TEST(Compatibility, WantsTheBootImagesVersionBehindTheBootLine) {
  constexpr std::tuple<const char*, const char*, const char*, bool> kCases[] = {
      {"[boot]\nV1\n", "R1", "V1-R1", true},    {"\n[boot]\n\t V1-R1 \r\n", "", "V1-R1", true},
      {"[boot]\nV1\n", "R1", "V1", false},      {"[boot]\nV1\n", "R1", "V1-R10", false},
      {"[Boot]\nV1\n", "", "V1", false},        {"V1\n[boot]\nV2\n", "", "V1", false},
      {"[boot]\nV1-R\n", "R1", "V1-R1", false}, {"V0\n[boot]\n[other]\nV1", "", "V1", true},
      {"[boot]", "", "[boot]", true},           {"[boot]\n\nV1\n", "", "", false},
      {"[boot]\n\nV1\n", "R1", "-R1", true},
  };
  for (const auto& [list, product, running, complies] : kCases)
    EXPECT_EQ(IsCompliant(Lines(list).get(), product, running), complies) << list << running;
}

TEST(Compatibility, VersionsComeFromTheDescription) {
  constexpr std::tuple<const char*, const char*, const char*> kCases[] = {
      {"Platform version: V1\nProduct version: R1\nPlatform version: V2\nProduct version: R2\n", "V1-R1", "R2"},
      {"Platform version: V1\nPlatform version: V2\n", "V1", ""},
      {"Product version: R1\nPlatform version: V1\n", "-R1", "R1"},
      {"Platform version: V1\n  PRODUCT version: R1 \n", "V1", "R1"},
      {"Platform version:V1\n", "", ""},
  };
  for (const auto& [text, running, product] : kCases) {
    char found_running[kRunningVersionRoom];
    char found_product[kProductVersionRoom];
    ReadBootVersion(Lines(text).get(), found_running);
    ReadProductVersion(Lines(text).get(), found_product);
    EXPECT_STREQ(found_running, running) << text;
    EXPECT_STREQ(found_product, product) << text;
  }
}

TEST(PackageName, NeedsItsSuffixAndMore) {
  constexpr std::tuple<const char*, std::size_t, std::uint16_t> kCases[] = {
      {"A.BiN", 5, 1}, {"A.BiN", 4, 0}, {".bin", 9, 0}, {"a.bin.", 9, 0}, {"abin", 9, 0}, {"a.bin.bin", 9, 1}};
  for (const auto& [name, longest, fits] : kCases) EXPECT_EQ(ESH_FilterFile(name, ".bin", longest), fits) << name;
}

TEST(ProcessRunner, SplitsAtBlanksAndTabsOnly) {
  const UniqueArguments words(PKG_ParserVecAlloc(" \t/bin/true \"a  b\"\t\tc\\ "));
  ASSERT_EQ(VEC_GetCount(words.get()), 4U);
  EXPECT_STREQ(static_cast<char*>(words->ppvArray[1]), "\"a");
  EXPECT_STREQ(static_cast<char*>(words->ppvArray[3]), "c\\");
  std::signal(SIGPIPE, SIG_IGN);  // which a tool before a pipe must end by; what it ignores is Ctrl+C
  EXPECT_EQ(PKG_System("/bin/grep -q ^SigIgn:.*[02468ace]..[2367abef]$ /proc/self/status"), kSuccess);
  for (const char* line : {"/bin/false", "true", "", " \t", "/bin/no-such-tool"})
    EXPECT_EQ(PKG_System(line), ESH_ERR_FAIL) << line;
}

TEST(ProgressDots, BeginWhenAVerificationTakesItsTime) {
  const std::string name = "Verifying the file p.bin ...";
  ScriptedStdio stdio;
  struct stat shown {};
  const auto wait_for = [&](std::size_t bytes, int tenths) {
    for (; tenths > 0 && fstat(STDOUT_FILENO, &shown) == 0 && shown.st_size < static_cast<off_t>(bytes); --tenths)
      ESH_Pkg_NanoSleep(100'000'000);
    return static_cast<std::size_t>(shown.st_size);
  };
  g_bEshDone = 0;
  const pthread_t dots = ESH_PKG_CreateDotThrd("p.bin");
  EXPECT_EQ(wait_for(99, 15), name.size());
  (void)wait_for(name.size() + 2, 300);
  g_bEshDone = 1;
  pthread_join(dots, nullptr);
  const std::string slow = stdio.TakeOutput();
  EXPECT_TRUE(slow == name + "..Done.\r\n" || slow == name + "...Done.\r\n") << slow;
}

using InstallLoad = PackageTest;

TEST_F(InstallLoad, BootImageThatCrashesItsDecoderHasNoVersion) {
  std::filesystem::create_symlink(ESH_WILD_DECODER, "/lib/libun7z.so");
  mkpkg::PackageContents boot_image = Contents();
  boot_image.files[1].packing = kPacked7z;
  boot_image.files[1].unpacked_size = 16;
  WriteFile(kTestPackage, Compose(boot_image));
  WriteFile("/proc/sys/61000/3", "flash:/good.bin\n");
  char version[kRunningVersionRoom] = "stale";
  ReadRunningVersion(version);
  EXPECT_STREQ(version, "");
}

}  // namespace
