#include <fcntl.h>
#include <sys/stat.h>

#include <filesystem>
#include <tuple>
#include <utility>

#include "pkg/format/fingerprint_trailer.h"
#include "pkg/format/product_code.h"
#include "pkg/format/signature.h"
#include "tests/support/package_fixture.h"
#include "tools/mkpkg/description.h"
#include "tools/mkpkg/device_verdict.h"
#include "tools/mkpkg/files.h"
#include "tools/mkpkg/image_archive.h"
#include "tools/mkpkg/json_writer.h"
#include "tools/mkpkg/warnings.h"
#include "util/unique_handle.h"

namespace {

TEST(PackageDescription, WrongLineIsNamed) {
  static constexpr char kSources[] = "d:2: a file's data come from either text:, file: or directory:";
  constexpr std::pair<const char*, const char*> kCases[] = {
      {"", "d:0: there is no product-tag"},
      {"product-tag: 1\nproduct-tag: 2\n", "d:2: product-tag is given twice"},
      {"product-tag: 0x100000000\n", "d:1: \"0x100000000\" is no value for product-tag"},
      {"product-tag: -1\n", "d:1: \"-1\" is no value for product-tag"},
      {"# c\n\nnonsense\n", "d:3: expected \"key: value\" or \"[section]\""},
      {"name: x\n", "d:1: there is no key \"name\" here"},
      {"product-tag: 1\n[image\n", "d:2: a section's name ends with \"]\""},
      {"product-tag: 1\n[images]\n", "d:2: a section is [description], [compatibility], [image] or [file NUMBER]"},
      {"product-tag: 1\n[image]\ncompression: 7z, gz\nfile: a\n", "d:3: \"7z, gz\" is no value for compression"},
      {"product-tag: 1\n[image]\ncompression: zip\nfile: a\n", "d:3: \"zip\" is no value for compression"},
      {"type: x\n", "d:1: \"x\" is no value for type"},
      {"type: system\nbyte-order: x\n", "d:2: \"x\" is no value for byte-order"},
      {"product-tag: 4294967295\n[image]\n[description]\ntext: a\n", kSources},
      {"product-tag: 1\n[image]\nfile: a\ndirectory: b\n", kSources},
  };
  mkpkg::PackageDescription description;
  for (const auto& [text, problem] : kCases)
    EXPECT_EQ(mkpkg::ParseDescription(text, "d", description), problem) << text;
  constexpr char kGood[] =
      "product-tag: 0x10\nbyte-order: host\nattribute: 2\ntype: 3\n"
      "[file 0x1234]\ntext: a: b\ntext:\ncompression: gz, 7z";
  ASSERT_EQ(mkpkg::ParseDescription(kGood, "d", description), "");
  const auto& [tag, type, attribute, in_host_order, files] = description;
  EXPECT_EQ(std::tuple(tag, type, attribute, in_host_order, files.at(0).id, files.at(0).text),
            std::tuple(0x10U, 3U, 2U, true, 0x1234U, "a: b\n\n"));
}

using C = mkpkg::PackageContents;

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
    EXPECT_EQ(mkpkg::ReadPackage(kTestPackage, name == "measured.bin", model), "");
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
      {"image other.gz: the data are no whole cpio archive", [](C&) {}, "measured.bin"},
      {"image a.tar: only \".gz\", \".lzma\" and \".xz\" are unpacked;", [](C& c) { c.files[3].name = "a.tar"; }},
      {"image a.xz: the data are not what the suffix says;", [](C& c) { c.files[3].name = "a.xz"; }},
      {"image a;b.gz: a device refuses a name of more than letters,", [](C& c) { c.files[3].name = "a;b.gz"; }},
      {"the compatibility list has no line \"[boot]\": no boot", [](C& c) { c.files[0].data = "7.1\n"; }},
      {"the compatibility list names nothing after", [](C& c) { c.files[0].data = " [boot]\n \n"; }},
      {"\"install load\" takes packages with attribute 0 only\nproduct",
       [](C& c) { c.attribute = c.product_tag = ~0U; }},
      {"\"install load\" takes packages of type 2 only\nthe package holds", [](C& c) { c.type = 1, c.files.clear(); }},
      {"there is no image: \"install load\" will fail\n", [](C& c) { c.files.resize(2); }},
      {"file 0x04000000 system.gz gives a device no data: compr", [](C& c) { c.files[3].packing = 1; }},
      {"there is more than one description: the first one counts", [](C& c) { c.files.push_back(c.files[1]); }},
      {"there is no description: \"display install", [](C& c) { c.files.erase(c.files.begin() + 1); }},
      {"the compatibility list holds a NUL byte: what follows it", [](C& c) { c.files[0].data += '\0'; }},
      {"the product version is longer than 64 bytes: a device", [](C& c) { c.files[1].data.insert(57, 63, '1'); }},
      {"the description has no line \"Product version: \": a line", [](C& c) { c.files[1].data = "x"; }},
      {"the description has more than one product version", [](C& c) { c.files[1].data += "product version: 1"; }},
      {"file 0x04000000 system.gz gives a device no data: it is empty", [](C& c) { c.files[3].data = ""; }},
      {"image system.gz: an earlier one has the same device tag 0x0A0B0C0D",
       [](C& c) { c.files.push_back(c.files[3]); }},
      {"image system.gz: device tag 0xFFFFFFFF fits no", [](C& c) { c.files[3].device_code = kUnknownTag; }},
      {"the path flash:/name-of-58-bytes", [](C&) {}, "name-of-58-bytes-for-which-the-record-has-no-room-1234.bin"},
      {"the file name holds", [](C&) {}, "a~.bin"},
      {"the file name does not end in", [](C&) {}, "good.bin.old"},
  };
  for (const Case& c : kCases) EXPECT_TRUE(WarningsFor(Changed(c.change), c.name).starts_with(c.outcome)) << c.outcome;
  const char* longest = "name-of-57-bytes-for-which-the-record-has-room-123456.bin";
  EXPECT_EQ(
      WarningsFor(Changed([](C& c) { c.files[1].data.insert(57, 62, '1'), c.files[3].name = "_-+.gz"; }), longest), "");
}

TEST_F(PackageTool, SevenZipUnpacksToWhatWasPacked) {
  const std::string data(1000000, 'x');
  const std::string packed = Compressed(mkpkg::Compression::k7z, data);
  for (const std::size_t told : {data.size(), data.size() + 1}) EXPECT_EQ(Unpacked(packed, told), data);
  EXPECT_EQ(Unpacked(packed, data.size() - 1), "refused");
  EXPECT_EQ(Unpacked(Compressed(mkpkg::Compression::k7z, ""), 1), "refused");
  EXPECT_EQ(Unpacked(Compressed(mkpkg::Compression::k7z, "x"), 1), "x");
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
  EXPECT_NE(archives[0].find("000041ed"), std::string::npos) << "a directory's mode";
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
  for (const std::string_view part : {kLengthLabel, kGenericMarkers.begin, kGenericMarkers.end}) {
    std::string damaged = GoodPackage();
    damaged[damaged.rfind(part)] = 'f';
    EXPECT_GT(Sign(damaged, form).size(), damaged.size()) << "a device looks for it at the package's end alone";
  }
}

TEST_F(PackageTool, ForetellsTheDevicesRefusal) {
  constexpr Case kCases[] = {
      {"name: good~.bin: Invalid file name.", [](C&) {}, "good~.bin"},
      {"primary-partition: The startup software images must be in the primary partition.", [](C&) {}, "usba1:/p.bin"},
      {"typed-name:  % Wrong parameter found at '^' position.", [](C&) {}, "\"flash:/a b.bin\""},
      {"typed-name:  % Too many parameters found at '^' position.", [](C&) {}, "a.bin b"},
      {"system-package: Package good.bin is not a system package.", [](C& c) { c.type = 1; }},
      {"product-tag: good.bin is corrupted.", [](C& c) { ++c.product_tag; }},
      {"compatibility-list: File good.bin is invalid.", [](C& c) { c.files[0].packing = 1; }},
      {"compatible: This system image is not compliant with the boot image.",
       [](C& c) { c.files[0].data = "[boot]\n9"; }},
      {"image: Operation failed! Operation failed!", [](C& c) { c.files[3].device_code = 1; }},
      {"image: Operation failed! Operation failed!", [](C& c) { c.files[3].packing = 1; }},
      {"image-name: Operation failed! Operation failed!", [](C& c) { c.files[3].name = "a/b.gz"; }},
      {": ", [](C&) {}},
  };
  const auto judge = [](const char* name) {
    return mkpkg::JudgeForDevice(kTestPackage, {kVersionFile, kSignKeyDirectory, "/tmp/boot.bin", name});
  };
  C boot_image = Contents();
  WriteFile("/tmp/boot.bin", Compose(boot_image));
  for (const Case& c : kCases) {
    WriteFile(kTestPackage, Sign(Changed(c.change), {.key_name = "maker"}));
    const mkpkg::DeviceVerdict verdict = judge(c.name).install;
    EXPECT_EQ(verdict.step + ": " + verdict.line, c.outcome) << verdict.reason;
  }
  EXPECT_EQ(judge("good.bin").images.size(), 2U);
  boot_image.files[1].data += std::string(1 << 20, '\n');
  WriteFile("/tmp/boot.bin", Compose(boot_image));
  EXPECT_EQ(judge("good.bin").install.step, "compatible");
}

TEST(JsonText, IsValidWhateverItHolds) {
  mkpkg::JsonWriter json;
  json.BeginObject();
  // The first and the last characters of each length, and what is no character for being just beside them.
  json.Text("a\"", "\\\x1F\x20\xC2\x80\xE0\xA0\x80\xED\x9F\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF");
  json.Texts("b", {"c", "\xC1\xBF\xE0\x9F\xBF\xED\xA0\x80\xF0\x8F\xBF\xBF\xF4\x90\x80\x80\xF5\x80\x80\x80\xC3"});
  json.EndObject();
  std::string replaced;
  for (int i = 0; i < 21; ++i) replaced += "\\ufffd";
  EXPECT_EQ(json.Written(),
            "{\n  \"a\\\"\": \"\\\\\\u001f \xC2\x80\xE0\xA0\x80\xED\x9F\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF\",\n"
            "  \"b\": [\n    \"c\",\n    \"" +
                replaced + "\"\n  ]\n}\n");
}

}  // namespace
