#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "pkg/format/contained_file.h"
#include "pkg/format/head_check.h"
#include "tools/mkpkg/verdict_text.h"
#include "util/unique_handle.h"

/// Answers for the device: for each package whose path is a line of standard input one line with the verdict, followed
/// for a good package by what the device hands out of each file in the table: its name, a NUL and its data in
/// hexadecimal, or "-".
///   forgery_judge PRODUCT-TAG KEY-DIRECTORY

namespace {

constexpr std::size_t kNameRoom = 256;
constexpr std::size_t kLineRoom = 4096;

void PrintFile(PKG_READER_S* reader, const PackageFileEntry& file) {
  std::uint32_t size = 0;
  char name[kNameRoom] = "";
  const UniqueText data(static_cast<char*>(GetFileFromReadHeadByFileDesc(&file, reader, sizeof(name), &size, name)));
  const std::string named = data == nullptr ? "" : std::string(name) + '\0' + std::string(data.get(), size);
  std::printf(data == nullptr ? " -" : " ");
  for (const char byte : named) std::printf("%02x", static_cast<unsigned char>(byte));
}

void PrintFiles(PKG_READER_S* reader) {
  for (std::uint32_t i = 0; i < reader->head.file_count; ++i) PrintFile(reader, reader->head.files[i]);
}

void Judge(const char* path, std::uint32_t product_tag, const char* key_directory) {
  PKG_READER_S* opened = nullptr;
  PackageVerdict verdict = OpenPackage(path, opened);
  const UniquePackage reader(opened);
  if (reader != nullptr) verdict = JudgePackage(reader.get(), product_tag, key_directory);
  std::printf("%s", mkpkg::VerdictTextOf(verdict).name);
  if (verdict == PackageVerdict::kGood) PrintFiles(reader.get());
  std::printf("\n");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return EXIT_FAILURE;
  const auto product_tag = static_cast<std::uint32_t>(std::strtoul(argv[1], nullptr, 0));
  char path[kLineRoom];
  while (std::fgets(path, sizeof(path), stdin) != nullptr) {
    path[std::strcspn(path, "\n")] = '\0';
    Judge(path, product_tag, argv[2]);
    if (std::fflush(stdout) != 0) return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}
