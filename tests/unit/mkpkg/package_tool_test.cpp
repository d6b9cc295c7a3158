#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "tests/support/package_fixture.h"
#include "tools/mkpkg/compression.h"
#include "tools/mkpkg/description.h"
#include "tools/mkpkg/device_key.h"
#include "tools/mkpkg/device_verdict.h"
#include "tools/mkpkg/files.h"
#include "tools/mkpkg/image_archive.h"
#include "tools/mkpkg/json_writer.h"
#include "tools/mkpkg/warnings.h"

namespace {

TEST(PackageDescription, WrongLineIsNamed) {
  struct Case {
    const char* text;
    const char* problem;  // begins so
  };
  constexpr Case kCases[] = {
      {"", "d:0: there is no product-tag"},
      {"product-tag: 1\nproduct-tag: 2\n", "d:2: product-tag is given twice"},
      {"product-tag: 0x100000000\n", "d:1: \"0x100000000\" is no value"},
      {"product-tag: -1\n", "d:1: \"-1\" is no value"},
      {"# c\n\nnonsense\n", "d:3: expected"},
      {"name: x\n", "d:1: there is no key \"name\" here"},
      {"product-tag: 1\n[image\n", "d:2: a section's name ends"},
      {"product-tag: 1\n[images]\n", "d:2: a section is"},
      {"product-tag: 1\n[image]\ncompression: 7z, gz\nfile: a\n", "d:3: \"7z, gz\" is no value"},
      {"product-tag: 1\n[image]\ncompression: zip\nfile: a\n", "d:3: \"zip\" is no value"},
      {"product-tag: 1\n[image]\n[description]\ntext: a\n", "d:2: a file's data come from either"},
      {"product-tag: 1\n[image]\nfile: a\ndirectory: b\n", "d:2: a file's data come from either"},
      {"product-tag: 0x10\n[file 0x1234]\nname: n\ntext: a: b\ntext:\ncompression: gz, 7z", ""},
  };
  for (const Case& c : kCases) {
    mkpkg::PackageDescription description;
    const std::string problem = mkpkg::ParseDescription(c.text, "d", description);
    EXPECT_TRUE(problem.starts_with(c.problem) && problem.empty() == (*c.problem == '\0')) << c.text << problem;
    if (!problem.empty()) continue;
    ASSERT_EQ(description.files.size(), 1U);
    EXPECT_EQ(description.files[0].text, "a: b\n\n");
    EXPECT_EQ(description.files[0].id, 0x1234U);
    EXPECT_EQ(description.product_tag, 0x10U);
  }
}

struct PackageTool : PackageTest {
  /// A package that nothing speaks against, for a boot image of version V1-R1.
  static mkpkg::PackageContents Contents() {
    mkpkg::PackageContents contents = PackageTest::Contents();
    contents.files.front().data = "[boot]\nV1\n";
    for (mkpkg::PackageFile& file : contents.files) {
      if (file.id == kSystemImageFile) file.data = "\x1F\x8B and more";
    }
    return contents;
  }
  static mkpkg::PackageModel Stored(const std::string& package) {
    WriteFile(kTestPackage, package);
    mkpkg::PackageModel model;
    EXPECT_EQ(mkpkg::ReadPackage(kTestPackage, model), "");
    return model;
  }
};

TEST_F(PackageTool, WarnsOfWhatADeviceDropsSilently) {
  struct Case {
    const char* warning;  // a part of it
    void (*change)(mkpkg::PackageContents& contents);
    const char* file_name = "good.bin";
  };
  using C = mkpkg::PackageContents;
  constexpr Case kCases[] = {
      {"only \".gz\", \".lzma\" and \".xz\" are unpacked", [](C& c) { c.files.back().name = "a.tar"; }},
      {"not what the suffix says", [](C& c) { c.files.back().name = "a.xz"; }},
      {"holds a slash", [](C& c) { c.files.back().name = "../a.gz"; }},
      {"command interpreter", [](C& c) { c.files.back().name = "a;b.gz"; }},
      {"no line \"[boot]\"", [](C& c) { c.files.front().data = "7.1\n"; }},
      {"attribute 0 only", [](C& c) { c.attribute = 1; }},
      {"gives a device no data", [](C& c) { c.files.back().packing = 1; }},
      {"same device tag", [](C& c) { c.files.push_back(c.files.back()); }},
      {"longer than 64 bytes", [](C&) {}, "a-name-that-fills-more-than-what-the-record-has-room-for-12345.bin"},
      {"does not end in \".bin\"", [](C&) {}, "good.bin.old"},
  };
  const auto has = [](const std::vector<std::string>& warnings, const char* part) {
    return std::any_of(warnings.begin(), warnings.end(),
                       [&](const std::string& warning) { return warning.find(part) != std::string::npos; });
  };
  const mkpkg::PackageModel plain = Stored(Compose(Contents()));
  for (const Case& c : kCases) {
    mkpkg::PackageContents contents = Contents();
    c.change(contents);
    EXPECT_FALSE(has(mkpkg::WarningsFor(plain, "good.bin"), c.warning)) << c.warning;
    EXPECT_TRUE(has(mkpkg::WarningsFor(Stored(Compose(contents)), c.file_name), c.warning)) << c.warning;
  }
}

TEST_F(PackageTool, SevenZipUnpacksToWhatWasPacked) {
  const std::string data(100000, 'x');
  std::string packed;
  mkpkg::Progress progress("", 0);
  ASSERT_EQ(mkpkg::Compress(mkpkg::Compression::k7z, data, progress, packed), "");
  std::string unpacked;
  EXPECT_EQ(mkpkg::Unpack7z(packed, data.size(), unpacked), "");
  EXPECT_EQ(unpacked, data);
  EXPECT_NE(mkpkg::Unpack7z(packed, data.size() - 1, unpacked), "");
  EXPECT_NE(mkpkg::Unpack7z(packed, data.size() + 1, unpacked), "");
  EXPECT_NE(mkpkg::Unpack7z(packed.substr(0, packed.size() - 1), data.size(), unpacked), "");
}

TEST_F(PackageTool, ArchiveDependsOnNamesAndContentsOnly) {
  for (const char* tree : {"/tmp/one", "/tmp/other"}) {
    const bool backwards = std::string_view(tree) == "/tmp/other";
    for (const char* name : {backwards ? "/z" : "/a/b", backwards ? "/a/b" : "/z"})
      WriteFile(std::string(tree) + name, "text");
    std::filesystem::create_symlink("z", std::string(tree) + "/link");
  }
  std::string one;
  std::string other;
  ASSERT_EQ(mkpkg::ArchiveDirectory("/tmp/one", 5, one), "");
  ASSERT_EQ(mkpkg::ArchiveDirectory("/tmp/other", 5, other), "");
  EXPECT_EQ(one, other);
  EXPECT_EQ(mkpkg::MeasureImage(one)->bytes, 8U);
  EXPECT_EQ(mkpkg::MeasureImage(one)->files, 4U);
  EXPECT_FALSE(mkpkg::MeasureImage(one.substr(0, one.size() / 2)));
  ASSERT_EQ(mkfifo("/tmp/one/pipe", 0600), 0);
  EXPECT_NE(mkpkg::ArchiveDirectory("/tmp/one", 5, one), "") << "what an archive cannot hold must not vanish";
}

TEST_F(PackageTool, FailedWriteLeavesWhatWasThere) {
  WriteFile("/tmp/place/file", "old");
  EXPECT_NE(mkpkg::WriteWholeFile("/tmp/place/file", "new", 0600, false), "");
  EXPECT_EQ(ReadFile("/tmp/place/file"), "old");
  EXPECT_EQ(mkpkg::WriteWholeFile("/tmp/place/file", "new"), "");
  EXPECT_EQ(ReadFile("/tmp/place/file"), "new");
  EXPECT_NE(mkpkg::WriteWholeFile("/dev/full", "new"), "");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator("/tmp/place"), {}), 1) << "a temporary file is left";
}

TEST_F(PackageTool, ResigningReplacesTheSignature) {
  const std::string once = GoodPackage();
  EXPECT_EQ(Sign(once, {.key_name = "maker"}), once);
  EXPECT_EQ(Sign(Sign(once, {.in_head = true, .key_name = ""}), {.key_name = "maker"}), once);
}

TEST_F(PackageTool, NoKeyWithASmallExponent) {
  mkpkg::UniqueKey key;
  for (const std::uint32_t exponent : {1U, 3U, 65535U, 65538U}) EXPECT_NE(mkpkg::GenerateKey(exponent, key), "");
  std::string file(mkpkg::kLongKeyFile, '\xFF');
  EXPECT_FALSE(mkpkg::IsWeakDeviceKey(file));
  file.replace(mkpkg::kLongKeyFile - 256, 256, std::string(255, '\0') + "\x03");
  EXPECT_TRUE(mkpkg::IsWeakDeviceKey(file));
}

TEST_F(PackageTool, ForetellsTheDevicesRefusal) {
  struct Case {
    const char* step;
    void (*change)(mkpkg::PackageContents& contents);
    const char* typed = "flash:/good.bin";
  };
  using C = mkpkg::PackageContents;
  constexpr Case kCases[] = {
      {"name", [](C&) {}, "flash:/good~.bin"},
      {"system-package", [](C& c) { c.type = 1; }},
      {"product-tag", [](C& c) { ++c.product_tag; }},
      {"compatibility-list", [](C& c) { c.files.front().packing = 1; }},
      {"compatible", [](C& c) { c.files.front().data = "[boot]\n9.9\n"; }},
      {"image", [](C& c) { c.files.back().device_code = 1; }},
      {"image", [](C& c) { c.files.back().packing = 1; }},
      {"image-name", [](C& c) { c.files.back().name = "a/b.gz"; }},
      {"", [](C&) {}},
  };
  WriteFile("/tmp/version", "ProductTag : 0x01020304\nDeviceTag : 0x0A0B0C0D\n");
  mkpkg::PackageContents boot = Contents();
  boot.files[1].data = "Platform version: V1\nProduct version: R1\n";
  WriteFile("/tmp/boot.bin", Compose(boot));
  for (const Case& c : kCases) {
    mkpkg::PackageContents contents = Contents();
    c.change(contents);
    WriteFile(kTestPackage, Sign(Compose(contents), {.key_name = "maker"}));
    const mkpkg::DeviceFacts facts = {"/tmp/version", "/etc/sign_pub_key", "/tmp/boot.bin", c.typed};
    const mkpkg::DeviceVerdict verdict = mkpkg::JudgeInstall(kTestPackage, facts);
    EXPECT_EQ(verdict.step, c.step) << verdict.reason;
    EXPECT_EQ(verdict.accepted, *c.step == '\0');
  }
}

TEST(JsonText, IsValidWhateverItHolds) {
  mkpkg::JsonWriter json;
  json.BeginObject();
  json.Text("a\"", "\\\n\xC3\xA9\xFF\xC0\xAF\xED\xA0\x80");
  json.EndObject();
  EXPECT_EQ(json.Written(), "{\n  \"a\\\"\": \"\\\\\\u000a\xC3\xA9\\ufffd\\ufffd\\ufffd\\ufffd\\ufffd\\ufffd\"\n}\n");
}

}  // namespace
