#include "pkg/package_reader.h"

#include <sys/stat.h>

#include <algorithm>

#include "pkg/contained_file.h"
#include "pkg/head_check.h"
#include "pkg/product_code.h"
#include "shell/result.h"
#include "tests/support/package_fixture.h"
#include "tools/mkpkg/package_bytes.h"
#include "util/unique_handle.h"

namespace {

using ReaderTest = PackageTest;

/// The n-th contained file's data; empty for none.
std::string FileOf(PKG_READER_S* reader, std::size_t n, std::string* name = nullptr) {
  std::uint32_t size = 77;
  char found[8];
  const UniqueText data(
      static_cast<char*>(GetFileFromReadHeadByFileDesc(&reader->head.files[n], reader, sizeof(found), &size, found)));
  EXPECT_EQ(data == nullptr, size == 0);
  if (name != nullptr && data != nullptr) {
    *name = found;
  }
  return data == nullptr ? "" : std::string(data.get(), size);
}

TEST_F(ReaderTest, FindsFilesInTableOrderInBothByteOrders) {
  for (const bool host_order : {false, true}) {
    mkpkg::PackageContents contents = Contents();
    contents.host_order = host_order;
    const UniquePackage reader = Open(Compose(contents));
    ASSERT_NE(reader, nullptr);
    std::uint32_t size = 0;
    const UniqueText first(static_cast<char*>(GetFileFromReaderHeadByFileID(kSystemImageFile, reader.get(), &size)));
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(std::string(first.get(), size), contents.files[2].data);
    std::string name;
    EXPECT_EQ(FileOf(reader.get(), 3, &name), contents.files[3].data);
    EXPECT_EQ(name, "system.");  // cut to its room
    EXPECT_EQ(GetFileFromReaderHeadByFileID(0x04000001, reader.get(), &size), nullptr);
    EXPECT_EQ(MainHeadCheck(0, reader.get()), kSuccess);
  }
}

TEST_F(ReaderTest, RefusesWhatIsNoPackage) {
  const std::string good = Compose(Contents());
  const auto with_word = [&](std::size_t offset, std::uint32_t value) {
    std::string package = good;
    mkpkg::PutWord(package, offset, value);
    return package;
  };
  const struct {
    std::string package;
    PackageVerdict verdict;
  } cases[] = {
      {"", PackageVerdict::kNoMainHead},
      {good.substr(0, kMainHeadSize - 1), PackageVerdict::kNoMainHead},
      {with_word(offsetof(PackageMainHead, byte_order), 1), PackageVerdict::kByteOrder},
      {with_word(offsetof(PackageMainHead, file_count), 129), PackageVerdict::kTooManyFiles},
      {with_word(offsetof(PackageMainHead, file_count), 0xFFFFFFFF), PackageVerdict::kTooManyFiles},
      {with_word(offsetof(PackageMainHead, byte_order), 0xFFFFFFFF), PackageVerdict::kTooManyFiles},
      {with_word(offsetof(PackageMainHead, file_count), 128), PackageVerdict::kHeadCrc},
      {with_word(offsetof(PackageMainHead, attributes), 1), PackageVerdict::kHeadCrc},
      {with_word(offsetof(PackageMainHead, attributes), 3), PackageVerdict::kKind},
      {with_word(offsetof(PackageMainHead, product_tag), 1), PackageVerdict::kProductTag},
      {with_word(offsetof(PackageMainHead, crc), mkpkg::GetWord(good, offsetof(PackageMainHead, crc)) | 0x10000),
       PackageVerdict::kHeadCrc},
      {good, PackageVerdict::kNoTrailer},
  };
  const std::size_t descriptors = OpenDescriptors();
  for (const auto& c : cases) {
    EXPECT_EQ(Judge(c.package), c.verdict);
  }
  EXPECT_EQ(OpenDescriptors(), descriptors);
  ASSERT_EQ(mkfifo("/mnt/flash:/fifo.bin", 0600), 0);
  EXPECT_EQ(PackageReadFileCreateByFile("/mnt/flash:/fifo.bin"), nullptr) << "nobody waits for its writer";
  EXPECT_EQ(PackageReadFileCreateByFile("/mnt/flash:"), nullptr);
}

TEST_F(ReaderTest, DeviceThatDoesNotKnowItsProductFitsNoPackage) {
  WriteFile(kVersionFile, "");
  mkpkg::PackageContents contents = Contents();
  contents.product_tag = kUnknownTag;
  const UniquePackage reader = Open(Compose(contents));
  EXPECT_EQ(MainHeadCheck(0, reader.get()), kErrPackageMismatch);
  WriteFile(kVersionFile, "ProductTag : 0x01020304\n");
  reader->head.product_tag = kTestProductTag;
  EXPECT_EQ(MainHeadCheck(1, reader.get()), kErrPackageKind);
  EXPECT_EQ(MainHeadCheck(0, reader.get()), kSuccess);
  reader->head.crc ^= 1;
  EXPECT_EQ(CheckPackageHead(reader.get()), kErrPackageCrc);
  reader->head.crc ^= 1;
  EXPECT_EQ(CheckPackageHead(reader.get()), ESH_ERR_FAIL);
}

TEST_F(ReaderTest, ForgedNumbersYieldNoData) {
  const std::string good = Compose(Contents());
  const std::size_t row = offsetof(PackageMainHead, files) + 3 * sizeof(PackageFileEntry);
  const std::size_t head = mkpkg::GetWord(good, row + offsetof(PackageFileEntry, head_offset));
  const auto size = static_cast<std::uint32_t>(good.size());
  const std::uint32_t values[] = {0, 1, 339, size - 1, size, size + 1, 0x7FFFFFFF, 0x80000000, 0xFFFFFEAC, 0xFFFFFFFF};
  for (const std::size_t field :
       {row + offsetof(PackageFileEntry, head_offset), row + offsetof(PackageFileEntry, total_length),
        row + offsetof(PackageFileEntry, check_a), row + offsetof(PackageFileEntry, check_b),
        head + offsetof(PackageFileHead, stored_size), head + offsetof(PackageFileHead, data_length),
        head + offsetof(PackageFileHead, compression), head + offsetof(PackageFileHead, check_a)}) {
    for (const std::uint32_t value : values) {
      std::string package = good;
      mkpkg::PutWord(package, field, value);
      const UniquePackage reader = Open(package);
      const bool stored_less = field == head + offsetof(PackageFileHead, stored_size) && value == 1;
      const bool as_is = field == head + offsetof(PackageFileHead, compression) && value == kStoredAsIs;
      EXPECT_EQ(FileOf(reader.get(), 3), as_is ? "the image" : stored_less ? "t" : "") << field << " " << value;
      EXPECT_EQ(FileOf(reader.get(), 2), "for another device") << "the others stay readable";
    }
  }
  // Packed with 7z, on a device without the library.
  std::string package = good;
  mkpkg::PutWord(package, head + offsetof(PackageFileHead, compression), kPacked7z);
  for (const std::uint32_t unpacked : {0U, 1U, 4096U}) {
    mkpkg::PutWord(package, head + offsetof(PackageFileHead, unpacked_size), unpacked);
    EXPECT_EQ(FileOf(Open(package).get(), 3), "");
  }
}

TEST_F(ReaderTest, ReadsFromMemoryLikeFromAFile) {
  const std::string good = Compose(Contents());
  const UniquePackage reader = Open(good);
  std::fclose(reader->source.stream);
  auto* memory = static_cast<std::uint8_t*>(std::malloc(good.size()));
  std::copy(good.begin(), good.end(), memory);
  reader->source = {0, nullptr, memory, memory + good.size(), memory};
  EXPECT_EQ(FileOf(reader.get(), 3), "the image");
  EXPECT_EQ(MainHeadCheck(0, reader.get()), kSuccess);
  EXPECT_EQ(CheckPackageHead(reader.get()), ESH_ERR_FAIL) << "it has no path whose file could be genuine";
  EXPECT_EQ(ReadBlockFromFile(&reader->source, good.size(), 1), nullptr);
  EXPECT_EQ(ReadBlockFromFile(&reader->source, 1, UINT64_MAX), nullptr);
}

}  // namespace
