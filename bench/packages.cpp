/// What it costs to verify a package, beside a digest over the same file.
#include <sys/resource.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
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
    Write(Directory() / "bench.key", device_key);
    Add("large", kLarge, key);
    Add("small", kSmall, key);
  }
  Packages(const Packages&) = delete;
  Packages& operator=(const Packages&) = delete;
  ~Packages() { fs::remove_all(directory_); }

  [[nodiscard]] fs::path Directory() const { return directory_; }

 private:
  void Add(const char* name, std::size_t size, const mkpkg::UniqueKey& key) const {
    mkpkg::PackageContents contents;
    contents.files.resize(1);
    contents.files[0].data.assign(size, 'x');
    std::string package;
    mkpkg::SignatureForm form;
    form.key_name = "bench";
    Require(mkpkg::ComposePackage(contents, package).empty() && mkpkg::SignPackage(form, key, package).empty(),
            "cannot make a package");
    Write(Directory() / name, package);
  }

  char directory_[32] = "/tmp/esh-bench-XXXXXX";
};

/// Runs as a program of its own, so that its start is paid for as the peer's is. Leaves its peak memory beside the
/// keys.
int Verify(const char* package, const fs::path& keys) {
  const UniquePackage reader(PackageReadFileCreateByFile(package));
  if (reader == nullptr || JudgeSignature(reader.get(), keys.c_str()) != PackageVerdict::kGood) return EXIT_FAILURE;
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  std::ofstream(keys / "peak") << usage.ru_maxrss;
  return EXIT_SUCCESS;
}

double MillisOfVerifying(const Packages& packages, const char* name) {
  const std::string package = packages.Directory() / name;
  return MillisOfChild(
      [&] { execl("/proc/self/exe", "bench_packages", package.c_str(), packages.Directory().c_str(), nullptr); });
}

double PeakOf(const Packages& packages, const char* name) {
  (void)MillisOfVerifying(packages, name);
  double peak = 0;
  std::ifstream(packages.Directory() / "peak") >> peak;
  return peak;
}

void MeasureVerifying(const Packages& packages) {
  const std::string large = packages.Directory() / "large";
  std::vector<double> ours;
  std::vector<double> peer;
  for (int i = 0; i < kRounds; ++i) {
    ours.push_back(MillisOfVerifying(packages, "large"));
    peer.push_back(MillisOfChild(
        [&] { execlp("openssl", "openssl", "dgst", "-sha256", large.c_str(), nullptr), _exit(EXIT_FAILURE); }));
  }
  Report("verify 64 MB / openssl dgst -sha256 (CPU ms)", Median(ours), Median(peer), kDigestGoal);
  Report("peak memory, verify 64 MB / 1 KB (KB)", PeakOf(packages, "large"), PeakOf(packages, "small"), kMemoryGoal);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 3) return Verify(argv[1], argv[2]);
  const Packages packages;
  MeasureVerifying(packages);
  return EXIT_SUCCESS;
}
