#include "device/arm64/cpio_archive.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

class CpioArchiveTest : public testing::Test {
 protected:
  CpioArchiveTest() {
    std::string name = "/tmp/cpio-archive-XXXXXX";
    directory_ = mkdtemp(name.data());
  }
  ~CpioArchiveTest() override { fs::remove_all(directory_); }

  /// Makes a small root file system; a mask and an order leave their traces in modes, times and directory order.
  std::string MakeTree(const std::string& name, mode_t mask, bool backwards) {
    const mode_t before = umask(mask);
    std::string root = directory_ + "/" + name;
    std::vector<std::string> files = {"/a", "/bin/tool", "/bin.x", "/z"};
    if (backwards) files = {files.rbegin(), files.rend()};
    fs::create_directories(root + "/bin");
    for (const std::string& file : files) std::ofstream(root + file) << "text of " << file;
    chmod((root + "/bin/tool").c_str(), 0700);
    fs::create_directories(root + "/tmp");
    chmod((root + "/tmp").c_str(), 01777);
    fs::create_symlink("tool", root + "/bin/link");
    umask(before);
    return root;
  }
  static std::string ArchiveOf(const std::string& root) {
    std::ostringstream bytes;
    device::CpioArchive archive(bytes);
    EXPECT_EQ(archive.AddTree(root), "");
    archive.AddDevice("console", 0600, 5, 1);
    EXPECT_TRUE(archive.Finish());
    return bytes.str();
  }
  /// @return what the host's cpio lists of an archive.
  std::string Listing(const std::string& archive) {
    std::ofstream(directory_ + "/archive") << archive;
    const std::string command = "TZ=UTC busybox cpio -tv < " + directory_ + "/archive 2>/dev/null";
    std::string text;
    FILE* listing = popen(command.c_str(), "r");  // NOLINT(cert-env33-c): the path is ours
    for (int byte = 0; (byte = std::fgetc(listing)) != EOF;) text += static_cast<char>(byte);
    EXPECT_EQ(pclose(listing), 0);
    return text;
  }

  std::string directory_;
};

TEST_F(CpioArchiveTest, SameFilesGiveSameBytes) {
  EXPECT_EQ(ArchiveOf(MakeTree("one", 0022, false)), ArchiveOf(MakeTree("other", 0077, true)));
}

TEST_F(CpioArchiveTest, IsReadByCpioWithModesLinksAndDevices) {
  const std::string listing = Listing(ArchiveOf(MakeTree("one", 0077, false)));
  for (const char* line :
       {"drwxr-xr-x 0/0         0 1970-01-01 00:00:01 bin\n", "-rw-r--r-- 0/0        10 1970-01-01 00:00:01 a\n",
        "-rwxr-xr-x 0/0        17 1970-01-01 00:00:01 bin/tool\n", "drwxrwxrwt 0/0         0 1970-01-01 00:00:01 tmp\n",
        "crw------- 0/0         0 1970-01-01 00:00:01 console\n"})
    EXPECT_NE(listing.find(line), std::string::npos) << line << "\nnot in\n" << listing;
  EXPECT_NE(listing.find(" bin/link -> tool\n"), std::string::npos) << listing;
  EXPECT_LT(listing.find(" bin\n"), listing.find(" bin/tool\n")) << "a directory comes before what it holds";
}

}  // namespace
