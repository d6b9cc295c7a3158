/// Files on a medium: what "copy" takes beside dd and "more" beside busybox's, as an operator waits for them.
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "bench/booted_shell.h"
#include "bench/console_output.h"
#include "bench/measure.h"
#include "tests/support/console.h"

namespace {

constexpr char kSource[] = "/mnt/flash:/source";
constexpr char kCopy[] = "/mnt/flash:/copy";
constexpr std::size_t kMegabyte = 1 << 20;
constexpr std::size_t kCopied = 256 * kMegabyte;
constexpr std::size_t kShown = 10 * kMegabyte;
constexpr int kCopies = 7;
constexpr int kShowings = 3;
/// A text that caches no longer hold bends a straight line; a square would come to 10.
constexpr double kStraight = 1.5;

constexpr char kMore[] = "---- More ----     ";
constexpr char kPeerMore[] = " bytes)";
constexpr char kPeerEnd[] = "that is all";

double Millis(const std::function<void()>& body) {
  const auto start = std::chrono::steady_clock::now();
  body();
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

/// Makes a text file of lines as wide as a console.
std::string MakeText(std::size_t bytes) {
  std::string name = "text" + std::to_string(bytes / kMegabyte);
  std::ofstream file("/mnt/flash:/" + name, std::ios::binary);
  const std::string line(71, 'x');
  for (std::size_t written = 0; written < bytes; written += line.size() + 1) file << line << '\n';
  Require(file.good(), "cannot make a text");
  return name;
}

void RunDd() {
  const pid_t child = fork();
  if (child == 0) {
    Require(freopen("/dev/null", "w", stderr) != nullptr, "no /dev/null");
    Execute({"/bin/busybox", "dd", std::string("if=") + kSource, std::string("of=") + kCopy, "bs=32k", "conv=fsync"});
    _exit(127);
  }
  int status = -1;
  Require(child > 0 && waitpid(child, &status, 0) == child && status == 0, "dd fails");
}

double MillisOfCopy(Console& console) {
  console.Type("copy source copy\r");
  (void)ReadUntilOneOf(console, {"[Y/N]:"});
  return Millis([&] {
    console.Type("y\r");
    const std::string said = ReadUntilOneOf(console, {kPrompt});
    Require(said.find("Done.") != std::string::npos, "copy fails");
  });
}

/// Ours and the peer take turns, so that a change of the machine's pace meets both.
void MeasureCopy(Console& console) {
  std::vector<double> ours;
  std::vector<double> peer;
  std::ofstream(kSource, std::ios::binary) << std::string(kCopied, 's');
  for (int i = 0; i < kCopies; ++i) {
    ours.push_back(MillisOfCopy(console));
    Require(std::filesystem::file_size(kCopy) == kCopied, "copy copies something else");
    std::filesystem::remove(kCopy);
    peer.push_back(Millis(RunDd));
    std::filesystem::remove(kCopy);
  }
  std::filesystem::remove(kSource);
  Report("copy of 256 MB / dd bs=32k conv=fsync (ms)", Median(ours), Median(peer), 1.05);
}

/// Answers every More at once. @return how much was shown.
std::size_t PageThrough(Console& console, std::string_view more, std::string_view end) {
  std::size_t shown = 0;
  for (;;) {
    const std::string screen = ReadUntilOneOf(console, {more, end});
    shown += screen.size();
    if (!screen.ends_with(more)) {
      Require(screen.ends_with(end), "a text does not end");
      return shown;
    }
    console.Type(" ");
  }
}

double MillisOfMore(Console& console, const std::string& name, std::size_t bytes) {
  return Millis([&] {
    console.Type("more " + name + "\r");
    Require(PageThrough(console, kMore, kPrompt) > bytes, "more does not show all");
  });
}

double MillisOfPeersMore(const std::string& name, std::size_t bytes) {
  return Millis([&] {
    Console console([&] {
      Execute({"/bin/busybox", "sh", "-c", "/bin/busybox more '/mnt/flash:/" + name + "'; echo -n " + kPeerEnd});
    });
    Require(PageThrough(console, kPeerMore, kPeerEnd) > bytes, "the peer does not show all");
  });
}

void MeasureMore(Console& console) {
  std::vector<double> ours;
  std::vector<double> large;
  std::vector<double> peer;
  const std::string text = MakeText(kShown);
  const std::string large_text = MakeText(10 * kShown);
  for (int i = 0; i < kShowings; ++i) {
    ours.push_back(MillisOfMore(console, text, kShown));
    peer.push_back(MillisOfPeersMore(text, kShown));
    large.push_back(MillisOfMore(console, large_text, 10 * kShown));
  }
  Report("more of 10 MB, every More answered / busybox (ms)", Median(ours), Median(peer), 0.7);
  Report("more of 100 MB / 10 times 10 MB (ms)", Median(large), 10 * Median(ours), kStraight);
}

}  // namespace

int main(int argc, char** argv) {
  Require(argc == 2, "usage: bench_files SHELL");
  const std::string shell = ShellOnDevice(argv[1]);
  PrepareDevice();
  Console console([&] { BecomeShell({shell}); });
  (void)ReadUntilOneOf(console, {kPrompt});
  MeasureCopy(console);
  MeasureMore(console);
  EndFamily(console.Child());
  return EXIT_SUCCESS;
}
