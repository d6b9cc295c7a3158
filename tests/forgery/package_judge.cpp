#include <cstdio>
#include <cstdlib>
#include <span>
#include <string>

#include "pkg/format/contained_file.h"
#include "pkg/format/head_check.h"
#include "tools/mkpkg/package_model.h"
#include "tools/mkpkg/verdict_text.h"
#include "util/unique_handle.h"

/// Answers for the device: for each line of standard input one line with the verdict on what the package then holds,
/// followed for a good package by what the device hands out of each file in the table: its name, a NUL and its data in
/// hexadecimal, or "-". Reads each package as the package tool does, too.
///   forgery_judge PACKAGE PRODUCT-TAG KEY-DIRECTORY

namespace {

void PrintFile(PKG_READER_S* reader, const PackageFileEntry& file) {
  std::uint32_t size = 0;
  char name[256] = "";
  const UniqueText data(static_cast<char*>(GetFileFromReadHeadByFileDesc(&file, reader, sizeof(name), &size, name)));
  const std::string named = data == nullptr ? "" : std::string(name) + '\0' + std::string(data.get(), size);
  std::printf(data == nullptr ? " -" : " ");
  for (const char byte : named) std::printf("%02x", static_cast<unsigned char>(byte));
}

void Judge(const char* path, std::uint32_t product_tag, const char* key_directory) {
  PKG_READER_S* opened = nullptr;
  PackageVerdict verdict = OpenPackage(path, opened);
  const UniquePackage reader(opened);
  if (reader != nullptr) verdict = JudgePackage(reader.get(), product_tag, key_directory);
  std::printf("%s", mkpkg::VerdictTextOf(verdict).name);
  if (verdict == PackageVerdict::kGood)
    for (const PackageFileEntry& file : std::span(reader->head.files).first(reader->head.file_count))
      PrintFile(reader.get(), file);
  std::printf("\n");
  mkpkg::PackageModel model;  // a maker looks at what comes from anywhere as well
  (void)mkpkg::ReadPackage(path, true, model);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) return EXIT_FAILURE;
  while (std::getchar() != EOF) {
    Judge(argv[1], static_cast<std::uint32_t>(std::strtoul(argv[2], nullptr, 0)), argv[3]);
    if (std::fflush(stdout) != 0) return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}
