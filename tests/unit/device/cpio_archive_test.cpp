#include "device/arm64/cpio_archive.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <sstream>
#include <string>

namespace {

namespace fs = std::filesystem;

struct CpioArchiveTest : testing::Test {
  CpioArchiveTest() { fs::current_path(mkdtemp(directory)); }
  ~CpioArchiveTest() override {
    fs::current_path("/");
    fs::remove_all(directory);
  }

  /// The archive of a small root file system, made with a mask and in an order that must leave no traces.
  static std::string ArchiveOf(const std::string& root, mode_t mask, std::initializer_list<const char*> files) {
    const mode_t before = umask(mask);
    fs::create_directories(root + "/bin");
    fs::create_directory(root + "/tmp");
    for (const char* file : files) std::ofstream(root + file) << "text of " << file;
    umask(before);
    fs::permissions(root + "/bin/tool", fs::perms::owner_all);
    fs::permissions(root + "/tmp", fs::perms::all | fs::perms::sticky_bit);
    fs::create_symlink("tool", root + "/bin/link");
    std::ostringstream bytes;
    device::CpioArchive archive(bytes);
    EXPECT_EQ(archive.AddTree(root), "");
    archive.AddDevice("console", 0600, 5, 1);
    EXPECT_TRUE(archive.Finish());
    return bytes.str();
  }

  char directory[sizeof("/tmp/cpio-archive-XXXXXX")] = "/tmp/cpio-archive-XXXXXX";
};

TEST_F(CpioArchiveTest, IsReadByCpioAndTheSameEachTime) {
  const std::string archive = ArchiveOf("one", 0077, {"/a", "/bin/tool", "/bin.x", "/z"});
  EXPECT_EQ(ArchiveOf("other", 0022, {"/z", "/bin.x", "/bin/tool", "/a"}), archive);
  std::ofstream("archive") << archive;
  ASSERT_EQ(std::system("TZ=UTC busybox cpio -tv < archive > listing 2>/dev/null"), 0);  // NOLINT(cert-env33-c)
  std::ostringstream listing;
  listing << std::ifstream("listing").rdbuf();
  EXPECT_EQ(listing.str(),
            "drwxr-xr-x 0/0         0 1970-01-01 00:00:01 .\n"
            "-rw-r--r-- 0/0        10 1970-01-01 00:00:01 a\n"
            "drwxr-xr-x 0/0         0 1970-01-01 00:00:01 bin\n"
            "lrwxrwxrwx 0/0         0 1970-01-01 00:00:01 bin/link -> tool\n"
            "-rwxr-xr-x 0/0        17 1970-01-01 00:00:01 bin/tool\n"
            "-rw-r--r-- 0/0        14 1970-01-01 00:00:01 bin.x\n"
            "drwxrwxrwt 0/0         0 1970-01-01 00:00:01 tmp\n"
            "-rw-r--r-- 0/0        10 1970-01-01 00:00:01 z\n"
            "crw------- 0/0         0 1970-01-01 00:00:01 console\n");
}

}  // namespace
