#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <utility>

#include "pkg/format/fingerprint_trailer.h"
#include "pkg/format/product_code.h"
#include "pkg/format/signature.h"
#include "tests/support/package_fixture.h"
#include "tools/mkpkg/description.h"
#include "tools/mkpkg/device_key.h"
#include "tools/mkpkg/device_verdict.h"
#include "tools/mkpkg/files.h"
#include "tools/mkpkg/image_archive.h"
#include "tools/mkpkg/json_writer.h"
#include "tools/mkpkg/warnings.h"
#include "util/unique_handle.h"

namespace {

TEST(PackageDescription, WrongLineIsNamed) {
  constexpr std::pair<const char*, const char*> kCases[] = {
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
  };
  mkpkg::PackageDescription description;
  for (const auto& [text, problem] : kCases)
    EXPECT_TRUE(mkpkg::ParseDescription(text, "d", description).starts_with(problem)) << text;
  constexpr char kGood[] =
      "product-tag: 0x10\nbyte-order: host\nattribute: 2\n[file 0x1234]\nname: n\ntext: a: b\ntext:\ncompression: gz, "
      "7z";
  ASSERT_EQ(mkpkg::ParseDescription(kGood, "d", description), "");
  EXPECT_EQ(description.product_tag, 0x10U);
  EXPECT_TRUE(description.host_order);
  EXPECT_EQ(description.attribute, 2U);
  EXPECT_EQ(description.files.at(0).id, 0x1234U);
  EXPECT_EQ(description.files.at(0).text, "a: b\n\n");
}

using C = mkpkg::PackageContents;

/// What is to come of a package that was changed.
struct Case {
  const char* outcome;
  void (*change)(C& contents);
  const char* name = "good.bin";
};

struct PackageTool : PackageTest {
  /// A package that nothing speaks against, for a boot image of version V1-R1-R1, but for one change.
  static std::string Changed(void (*change)(C& contents)) {
    C contents = Contents();
    contents.files[2].data = contents.files[3].data = "\x1F\x8B and more";
    change(contents);
    return Compose(contents);
  }
  static std::string WarningsFor(const std::string& package, const std::string& name) {
    WriteFile(kTestPackage, package);
    mkpkg::PackageModel model;
    EXPECT_EQ(mkpkg::ReadPackage(kTestPackage, true, model), "");
    std::string all;
    for (const std::string& warning : mkpkg::WarningsFor(model, name)) all += warning + "\n";
    return all;
  }
};

mkpkg::Sink Into(std::string& text) {
  return [&text](std::string_view piece) { return text += piece, ""; };
}

/// The pieces of a file that holds these bytes, until the next call.
std::unique_ptr<mkpkg::FilePieces> PiecesOf(const std::string& bytes) {
  static UniqueFd stored;
  WriteFile("/tmp/stored", bytes);
  stored.Reset(open("/tmp/stored", O_RDONLY));
  return std::make_unique<mkpkg::FilePieces>(stored.Get(), 0, bytes.size());
}

std::string Unpacked(const std::string& packed, std::uint64_t told) {
  std::string data;
  return FeedPieces(*mkpkg::Unpack7z(PiecesOf(packed), told), Into(data)).empty() ? data : "refused";
}

TEST_F(PackageTool, WarnsOfWhatADeviceDropsSilently) {
  constexpr Case kCases[] = {
      {"only \".gz\", \".lzma\" and \".xz\" are unpacked", [](C& c) { c.files[3].name = "a.tar"; }},
      {"not what the suffix says", [](C& c) { c.files[3].name = "a.xz"; }},
      {"a device refuses a name", [](C& c) { c.files[3].name = "a;b.gz"; }},
      {"no line \"[boot]\"", [](C& c) { c.files[0].data = "7.1\n"; }},
      {"attribute 0 only", [](C& c) { c.attribute = 1; }},
      {"gives a device no data", [](C& c) { c.files[3].packing = 1; }},
      {"there is more than one description", [](C& c) { c.files.push_back(c.files[1]); }},
      {"it is empty", [](C& c) { c.files[3].data = ""; }},
      {"same device tag", [](C& c) { c.files.push_back(c.files[3]); }},
      {"longer than 64 bytes", [](C&) {}, "a-name-that-is-more-than-what-the-record-has-room-for-123.bin"},
      {"does not end in \".bin\"", [](C&) {}, "good.bin.old"},
  };
  const std::string of_good = WarningsFor(Changed([](C&) {}), "good.bin");
  for (const Case& c : kCases) {
    EXPECT_EQ(of_good.find(c.outcome), std::string::npos) << c.outcome;
    EXPECT_NE(WarningsFor(Changed(c.change), c.name).find(c.outcome), std::string::npos) << c.outcome;
  }
}

TEST_F(PackageTool, SevenZipUnpacksToWhatWasPacked) {
  const std::string data(1000000, 'x');
  const std::string packed = Compressed(mkpkg::Compression::k7z, data);
  for (const std::size_t told : {data.size(), data.size() + 1}) EXPECT_EQ(Unpacked(packed, told), data);
  EXPECT_EQ(Unpacked(packed, data.size() - 1), "refused");
  EXPECT_EQ(Unpacked(packed.substr(0, packed.size() - 1), data.size()), "refused");
}

TEST_F(PackageTool, ArchiveDependsOnNamesAndContentsOnly) {
  std::string archives[2];
  for (const char* file : {"/tmp/0/a/b", "/tmp/0/z", "/tmp/1/z", "/tmp/1/a/b"}) WriteFile(file, "text");
  for (std::size_t i = 0; i < 2; ++i) {
    const std::string tree = "/tmp/" + std::to_string(i);
    std::filesystem::create_symlink("z", tree + "/link");
    ASSERT_EQ(mkpkg::ArchiveDirectory(tree, 5, Into(archives[i])), "");
  }
  EXPECT_EQ(archives[0], archives[1]);
  const auto room = mkpkg::MeasureImage(*PiecesOf(archives[0]));
  EXPECT_EQ(room->bytes, 8U);
  EXPECT_EQ(room->files, 4U);
  EXPECT_FALSE(mkpkg::MeasureImage(*PiecesOf(archives[0].substr(0, archives[0].size() / 2))));
  ASSERT_EQ(mkfifo("/tmp/0/pipe", 0600), 0);
  EXPECT_NE(mkpkg::ArchiveDirectory("/tmp/0", 5, Into(archives[0])), "") << "what it cannot hold must not vanish";
}

TEST_F(PackageTool, ResigningReplacesTheSignature) {
  const mkpkg::SignatureForm form = {.key_name = "maker"};
  EXPECT_EQ(Sign(GoodPackage(), form), GoodPackage());
  EXPECT_EQ(Sign(GoodPackage(true), form), GoodPackage());
  for (const std::string_view part : {std::string_view(kLengthLabel), kGenericMarkers.begin}) {
    std::string damaged = GoodPackage();
    damaged[damaged.rfind(part)] = 'f';
    EXPECT_GT(Sign(damaged, form).size(), damaged.size()) << "a device looks for it at the package's end alone";
  }
}

TEST_F(PackageTool, ForetellsTheDevicesRefusal) {
  constexpr Case kCases[] = {
      {"name", [](C&) {}, "good~.bin"},
      {"name", [](C&) {}, ".bin"},
      {"name", [](C&) {}, "abin"},
      {"primary-partition", [](C&) {}, "usba1:/p.bin"},
      {"typed-name", [](C&) {}, "nosuch:/p.bin"},
      {"typed-name", [](C&) {}, "\"flash:/a b.bin\""},
      {"system-package", [](C& c) { c.type = 1; }},
      {"product-tag", [](C& c) { ++c.product_tag; }},
      {"compatibility-list", [](C& c) { c.files[0].packing = 1; }},
      {"compatible", [](C& c) { c.files[0].data = "[boot]\n9.9\n"; }},
      {"image", [](C& c) { c.files[3].device_code = 1; }},
      {"image", [](C& c) { c.files[3].packing = 1; }},
      {"image-name", [](C& c) { c.files[3].name = "a/b.gz"; }},
      {"", [](C&) {}},
  };
  const auto judge = [](const char* name) {
    return mkpkg::JudgeForDevice(kTestPackage, {kVersionFile, kSignKeyDirectory, "/tmp/boot.bin", name});
  };
  C boot_image = Contents();
  WriteFile("/tmp/boot.bin", Compose(boot_image));
  for (const Case& c : kCases) {
    WriteFile(kTestPackage, Sign(Changed(c.change), {.key_name = "maker"}));
    const mkpkg::DeviceVerdict verdict = judge(c.name).install;
    EXPECT_EQ(verdict.step, c.outcome) << verdict.reason;
  }
  EXPECT_EQ(judge("good.bin").images.size(), 2U);
  boot_image.files[1].data += std::string(1 << 20, '\n');
  WriteFile("/tmp/boot.bin", Compose(boot_image));
  EXPECT_EQ(judge("good.bin").install.step, "compatible");
}

TEST(JsonText, IsValidWhateverItHolds) {
  mkpkg::JsonWriter json;
  json.BeginObject();
  json.Text("a\"", "\\\n\xC3\xA9\xFF\xC0\xAF\xED\xA0\x80");
  json.Texts("b", {"c", "d"});
  json.EndObject();
  EXPECT_EQ(json.Written(),
            "{\n  \"a\\\"\": \"\\\\\\u000a\xC3\xA9\\ufffd\\ufffd\\ufffd\\ufffd\\ufffd\\ufffd\",\n"
            "  \"b\": [\n    \"c\",\n    \"d\"\n  ]\n}\n");
}

}  // namespace
