/// What it costs to load a system image, beside the tools that unpack it alone. The loader is a program of its own,
/// with no more in its memory than the shell has.
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "bench/booted_shell.h"
#include "bench/measure.h"
#include "pkg/format/product_code.h"
#include "pkg/format/signature.h"
#include "pkg/install/boot_image.h"
#include "tests/support/private_root.h"
#include "tools/mkpkg/compression.h"
#include "tools/mkpkg/device_key.h"
#include "tools/mkpkg/image_archive.h"
#include "tools/mkpkg/package_signer.h"
#include "tools/mkpkg/package_writer.h"

namespace {

namespace fs = std::filesystem;

constexpr int kRounds = 5;
constexpr std::size_t kUnpacked = 128 << 20;  // of letters that take half a byte each
constexpr double kTimeGoal = 1.15;
constexpr std::size_t kOwnMemory = 8 << 20;  // besides the image
constexpr std::uint32_t kProduct = 0x01020304;
constexpr std::uint32_t kDevice = 0x0A0B0C0D;
constexpr char kImage[] = "/mnt/flash:/image.gz";
constexpr char kPackage[] = "flash:/system.bin";
constexpr char kPeak[] = "/tmp/peak";
constexpr char kUnpackImage[] = "cd / && /bin/gunzip -c '/mnt/flash:/image.gz' | /bin/cpio -i -d --quiet -u";

/// An image with one large file. @return its archive, packed.
std::string MakeImage() {
  std::minstd_rand random(1);
  std::string data(kUnpacked, 'a');
  for (char& letter : data) letter = static_cast<char>('a' + random() % 16);
  WriteFile("/tmp/image/loaded", data);
  std::string image;
  const mkpkg::Feed archive = [](const mkpkg::Sink& sink) { return mkpkg::ArchiveDirectory("/tmp/image", 0, sink); };
  const mkpkg::Sink take = [&](std::string_view piece) { return image += piece, ""; };
  Require(mkpkg::Compress(mkpkg::Compression::kGz, archive, take).empty(), "cannot make an image");
  fs::remove_all("/tmp/image");
  return image;
}

void StorePackage(const char* path, const std::vector<mkpkg::PackageFile>& files, const mkpkg::UniqueKey& key) {
  mkpkg::PackageContents contents;
  contents.product_tag = kProduct;
  contents.files = files;
  std::string package;
  mkpkg::SignatureForm form;
  form.key_name = "bench";
  Require(mkpkg::ComposePackage(contents, package).empty() && mkpkg::SignPackage(form, key, package).empty(),
          "cannot make a package");
  WriteFile(path, package);
}

/// A device with an image on its medium, alone and in a package. @return the image's size.
std::size_t PreparePackages() {
  PrepareDevice();
  for (const char* tool : {"sh", "gunzip", "cpio", "rm"}) fs::create_symlink("busybox", std::string("/bin/") + tool);
  fs::remove("/var");  // it was a link to the machine's
  fs::create_directories("/var/pkg");
  WriteFile(kVersionFile, "ProductTag : 0x01020304\nDeviceTag : 0x0A0B0C0D\n");
  WriteFile("/proc/sys/61000/3", "flash:/boot.bin");
  mkpkg::UniqueKey key;
  std::string device_key;
  Require(mkpkg::GenerateKey(mkpkg::kLeastExponent, key).empty() &&
              mkpkg::EncodeDeviceKey(key, mkpkg::kShortKeyFile, device_key).empty(),
          "no key");
  WriteFile(std::string(kSignKeyDirectory) + "/bench.key", device_key);
  StorePackage("/mnt/flash:/boot.bin",
               {{.id = kDescriptionFile, .name = "description", .data = "Platform version: V1\n"}}, key);
  const std::string image = MakeImage();
  WriteFile(kImage, image);
  StorePackage("/mnt/flash:/system.bin",
               {{.id = kCompatibilityFile, .name = "compatible", .data = "[boot]\nV1\n"},
                {.name = "image.gz", .data = image, .device_code = kDevice}},
               key);
  return image.size();
}

void RequireLoaded() {
  Require(fs::file_size("/loaded") == kUnpacked, "something else was unpacked");
  fs::remove("/loaded");
}

}  // namespace

int main(int argc, char** argv) {
  Require(argc == 2, "usage: bench_loading LOADER");
  const std::string loader = ShellOnDevice(argv[1]);
  const std::size_t image_size = PreparePackages();
  std::vector<double> ours;
  std::vector<double> peer;
  for (int i = 0; i < kRounds; ++i) {
    ours.push_back(MillisOfChild([&] {
      Execute({loader, kPackage, kPeak});
      _exit(EXIT_FAILURE);
    }));
    RequireLoaded();
    peer.push_back(MillisOfChild([] {
      Execute({"/bin/sh", "-c", kUnpackImage});
      _exit(EXIT_FAILURE);
    }));
    RequireLoaded();
  }
  Report("install load of 64 MB / gunzip | cpio (CPU ms)", Median(ours), Median(peer), kTimeGoal);
  double peak = 0;
  std::ifstream(kPeak) >> peak;
  Report("peak memory of install load / image and 8 MB (KB)", peak, static_cast<double>(image_size + kOwnMemory) / 1024,
         1);
  return EXIT_SUCCESS;
}
