#include <unistd.h>

#include <cstdlib>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "fuzz/require.h"
#include "pkg/format/contained_file.h"
#include "pkg/format/fingerprint_trailer.h"
#include "pkg/format/head_check.h"
#include "pkg/format/signature.h"
#include "util/regular_file.h"
#include "util/unique_handle.h"

namespace {

/// The private key was thrown away, so nothing but the two seeds can be signed with these.
constexpr char kKeys[] = ESH_FUZZ_DIRECTORY "/keys";
constexpr char kSeeds[] = ESH_FUZZ_DIRECTORY "/seeds/package/";
constexpr std::string_view kTrailerStart = "--=</Begin";

std::string Seed(const std::string& name) {
  std::size_t size = 0;
  const UniqueText bytes(FileReadWhole((kSeeds + name).c_str(), &size));
  Require(bytes != nullptr);
  return {bytes.get(), size};
}

/// Whether the signed bytes of a package are those of a seed.
bool IsGenuine(std::string_view package, bool in_head) {
  static const std::string head_seed = Seed("signed_in_head");
  static const std::string trailer_seed = Seed("signed_with_trailer");
  if (in_head) return package.substr(kMainHeadSize) == std::string_view(head_seed).substr(kMainHeadSize);
  const std::string_view signed_part = std::string_view(trailer_seed).substr(0, trailer_seed.find(kTrailerStart));
  return package.starts_with(signed_part) && package.substr(signed_part.size()).starts_with(kTrailerStart);
}

/// Reads everything that a device could read of a package.
void ReadAll(PKG_READER_S* reader, std::size_t size) {
  for (const PackageFileEntry& file : std::span(reader->head.files).first(reader->head.file_count)) {
    const std::unique_ptr<PackageFileHead, MemoryFreer> head(FileHeadCreateByFileDesc(reader, &file));
    char name[kContainedNameRoom / 2];
    std::uint32_t length = 0;
    const UniqueText data(
        static_cast<char*>(GetFileFromReadHeadByFileDesc(&file, reader, sizeof(name), &length, name)));
    Require((data == nullptr) == (length == 0));
    Require(length < size && (data == nullptr || head != nullptr));
  }
}

/// The package under test lies in one file, written anew for each input.
class PackageFile {
 public:
  PackageFile() : fd_(mkstemp(path_)) { Require(static_cast<bool>(fd_)); }
  PackageFile(const PackageFile&) = delete;
  PackageFile& operator=(const PackageFile&) = delete;
  ~PackageFile() { unlink(path_); }

  const char* Write(std::string_view package) {
    Require(ftruncate(fd_.Get(), 0) == 0 &&
            pwrite(fd_.Get(), package.data(), package.size(), 0) == static_cast<ssize_t>(package.size()));
    return path_;
  }

 private:
  char path_[32] = "/tmp/fuzz-package-XXXXXX";
  UniqueFd fd_;
};

bool IsAccepted(std::string_view package) {
  static PackageFile file;
  const UniquePackage reader(PackageReadFileCreateByFile(file.Write(package)));
  if (reader == nullptr) return false;
  Require(reader->head.file_count <= kMaxPackageFiles);
  ReadAll(reader.get(), package.size());
  PKG_CSS_S css = {};
  if (ReadTrailer(reader->source.stream, package.size(), 0, &css) == PackageVerdict::kGood) {
    Require(css.size - 1 <= package.size() - kMainHeadSize);
    CssFreer()(&css);
  }
  (void)JudgeMainHead(reader->head.attributes, reader.get(), reader->head.product_tag);
  if (JudgeSignature(reader.get(), kKeys) != PackageVerdict::kGood) return false;
  Require(IsGenuine(package, reader->head.signature_format != kTrailerSigned));
  ReadAll(reader.get(), package.size());
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const bool seeds_are_good = IsAccepted(Seed("signed_in_head")) && IsAccepted(Seed("signed_with_trailer"));
  Require(seeds_are_good);
  (void)IsAccepted({reinterpret_cast<const char*>(data), size});
  return 0;
}
