/// What it costs to make and to verify a package, beside the tools that pack or digest the same bytes.
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "bench/measure.h"
#include "pkg/format/signature.h"
#include "tools/mkpkg/device_key.h"
#include "tools/mkpkg/package_signer.h"
#include "tools/mkpkg/package_writer.h"

namespace {

namespace fs = std::filesystem;

constexpr int kRounds = 15;
constexpr std::size_t kLarge = 64 << 20;
constexpr std::size_t kSmall = 1024;
constexpr double kDigestGoal = 1.1;
constexpr int kLongRounds = 3;
constexpr double kBuildGoal = 1.05;
constexpr double kBuildMemory = 64 << 10;
constexpr double kToolMemory = 16 << 10;
constexpr double kMemoryGoal = 1.02;  // a few pages more or less are the kernel's doing

void Write(const fs::path& path, const std::string& bytes) {
  std::ofstream file(path, std::ios::binary);
  file << bytes;
  file.close();
  Require(static_cast<bool>(file), "cannot write a package");
}

/// A directory with a key and two packages that are signed with it.
class Packages {
 public:
  Packages() {
    Require(mkdtemp(directory_) != nullptr, "no temporary directory");
    mkpkg::UniqueKey key;
    std::string device_key;
    Require(mkpkg::GenerateKey(mkpkg::kLeastExponent, key).empty(), "no key");
    Require(mkpkg::EncodeDeviceKey(key, mkpkg::kShortKeyFile, device_key).empty(), "no device key");
    Write(Path("bench.key"), device_key);
    Write(Path("private.pem"), mkpkg::PrivatePem(key));
    Add("large.bin", kLarge, key);
    Add("small.bin", kSmall, key);
  }
  Packages(const Packages&) = delete;
  Packages& operator=(const Packages&) = delete;
  ~Packages() { fs::remove_all(directory_); }

  /// Of a file beside the packages.
  [[nodiscard]] std::string Path(const char* name) const { return std::string(directory_) + "/" + name; }

 private:
  void Add(const char* name, std::size_t size, const mkpkg::UniqueKey& key) const {
    mkpkg::PackageContents contents;
    contents.product_tag = 1;
    contents.files.resize(1);
    contents.files[0].data.assign(size, 'x');
    std::string package;
    mkpkg::SignatureForm form;
    form.key_name = "bench";
    Require(mkpkg::ComposePackage(contents, package).empty() && mkpkg::SignPackage(form, key, package).empty(),
            "cannot make a package");
    Write(Path(name), package);
  }

  char directory_[32] = "/tmp/esh-bench-XXXXXX";
};

/// Runs as a program of its own, so that its start is paid for as the peer's is.
int Verify(const char* package, const fs::path& keys) {
  const UniquePackage reader(PackageReadFileCreateByFile(package));
  return reader != nullptr && JudgeSignature(reader.get(), keys.c_str()) == PackageVerdict::kGood ? EXIT_SUCCESS
                                                                                                  : EXIT_FAILURE;
}

/// Becomes another program.
std::function<void()> Program(std::vector<std::string> words) {
  return [words = std::move(words)]() mutable {
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    execvp(arguments[0], arguments.data());
    _exit(EXIT_FAILURE);
  };
}

/// Times in turns, so that other work on the machine comes upon both.
void ReportTimes(const char* figure, const std::function<void()>& own, const std::function<void()>& other, int rounds,
                 double goal) {
  std::vector<double> ours;
  std::vector<double> peer;
  for (int i = 0; i < rounds; ++i) {
    ours.push_back(MillisOfChild(own));
    peer.push_back(MillisOfChild(other));
  }
  Report(figure, Median(ours), Median(peer), goal);
}

void MeasureVerifying(const Packages& packages) {
  const auto verify = [&](const char* name) {
    return Program({"/proc/self/exe", packages.Path(name), packages.Path("")});
  };
  ReportTimes("verify 64 MB / openssl dgst -sha256 (CPU ms)", verify("large.bin"),
              Program({"openssl", "dgst", "-sha256", packages.Path("large.bin")}), kRounds, kDigestGoal);
  Report("peak memory, verify 64 MB / 1 KB (KB)", PeakOfChild(verify("large.bin")), PeakOfChild(verify("small.bin")),
         kMemoryGoal);
}

std::string Letters() {
  std::minstd_rand random(1);
  std::string letters(kLarge, 'a');
  for (char& letter : letters) letter = static_cast<char>('a' + random() % 16);
  return letters;
}

/// What the package tool costs beside the tools that do the greatest part of its work alone.
void MeasureTool(const Packages& packages, const std::string& mkpkg) {
  const std::string package = packages.Path("built.bin");
  Write(packages.Path("description"),
        "product-tag: 1\n[image]\ndevice-tag: 1\nname: image.gz\nfile: letters\ncompression: gz\n");
  Write(packages.Path("version"), "ProductTag : 0x1\nDeviceTag : 0x1\n");
  Write(packages.Path("letters"), Letters());  // gone before anything is started: a child begins as large as this is
  const auto build = Program({mkpkg, "build", "--force", "--json", packages.Path("description"), package});
  ReportTimes("mkpkg build, gz, 64 MB / gzip -6 (CPU ms)", build,
              Program({"gzip", "-6", "-c", packages.Path("letters")}), kLongRounds, kBuildGoal);
  Report("peak memory, mkpkg build / 64 MB (KB)", PeakOfChild(build), kBuildMemory, 1);
  const auto digest = Program({"openssl", "dgst", "-sha256", packages.Path("large.bin")});
  const auto sign = Program(
      {mkpkg, "sign", "--key-name=bench", "--private-key=" + packages.Path("private.pem"), packages.Path("large.bin")});
  // No device loads the package without a boot image, which costs nothing; that is no failure here.
  const auto check = Program({"sh", "-c", "\"$0\" \"$@\"; [ $? = 1 ]", mkpkg, "check", "--json",
                              "--version-file=" + packages.Path("version"), "--keys=" + packages.Path(""),
                              packages.Path("large.bin")});
  ReportTimes("mkpkg sign, 64 MB / openssl dgst -sha256 (CPU ms)", sign, digest, kRounds, kDigestGoal);
  ReportTimes("mkpkg check, 64 MB / openssl dgst -sha256 (CPU ms)", check, digest, kRounds, kDigestGoal);
  for (const auto& [figure, work] :
       {std::pair("peak memory, mkpkg sign / 16 MB (KB)", sign),
        {"peak memory, mkpkg check / 16 MB (KB)", check},
        {"peak memory, mkpkg info / 16 MB (KB)", Program({mkpkg, "info", package})},
        {"peak memory, mkpkg extract / 16 MB (KB)", Program({mkpkg, "extract", package, packages.Path("out")})}})
    Report(figure, PeakOfChild(work), kToolMemory, 1);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 3) return Verify(argv[1], argv[2]);
  Require(argc == 2, "usage: bench_packages MKPKG");
  const Packages packages;
  MeasureVerifying(packages);
  MeasureTool(packages, argv[1]);
  return EXIT_SUCCESS;
}
