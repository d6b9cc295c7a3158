#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>

#include "device/device.h"

/// A console whose line is bad: types seeded rubbish at full speed on a booted device, and looks again and again
/// whether a prompt can be had, and whether anything has grown or changed.
///   bad_line [BYTES [SEED]]
namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

constexpr std::size_t kMostAtOnce = 800;  // the terminal holds as much while its output is stopped
constexpr std::string_view kGo = "\x11";  // XON
constexpr std::string_view kPrompt = "<boot>";
constexpr unsigned kRubbishPerPaste = 400;  // what is pasted runs tools, which take their time
constexpr long kNoGrowthKb = 256;           // the C library keeps up to 128 KB for later
constexpr int kSkipped = 77;                // where nobody may make namespaces

/// None of them waits for what no key ends.
constexpr std::array<std::string_view, 34> kPasted{"dir",
                                                   "dir /all",
                                                   "d\t\t\t",
                                                   "display version",
                                                   "display ip routing-table",
                                                   "display ipv6 routing-table",
                                                   "display interface m-eth0",
                                                   "display install package system.bin",
                                                   "display install package bad/forged.bin",
                                                   "more logs/logfile.log",
                                                   "more \t\t\t",
                                                   "copy readme.txt new\ry\ry",
                                                   "move new cfa0:\ry",
                                                   "delete cfa0:/new\ry",
                                                   "mkdir made",
                                                   "rmdir made\ry",
                                                   "pwd",
                                                   "install ?",
                                                   "telnet 10.0.0.2",
                                                   "ssh2 10.0.0.2\rx",
                                                   "reset ssh public-key",
                                                   "ping -c 2 10.0.0.1",
                                                   "ping 10.0.0.1",
                                                   "ping ipv6 fd00::1",
                                                   "tftp 10.0.0.1 get image.bin flash:/got\ry",
                                                   "ftp 10.0.0.1 get image.bin flash:/got\roperator\rharbour\ry",
                                                   "system-view",
                                                   "interface m-eth0",
                                                   "ip address 10.0.0.2 24",
                                                   "ip gateway 10.0.0.254",
                                                   "ipv6 address fd00::2 64",
                                                   "undo ip address",
                                                   "shutdown",
                                                   "undo shutdown"};
constexpr std::array<std::string_view, 9> kHalfSequences{"\x1b",      "\x1b[",       "\x1bO", "\x1b[3", "\x1b[1;5",
                                                         "\x1b[200~", "\x1b[A\x1b[", "\xc3",  "\x1bP"};

/// What is the same at every prompt, but for the memory.
struct State {
  long memory_kb = 0;
  std::string rest;  ///< descriptors, processes, files outside of the media, the terminal's modes
};

/// Prints the shell's memory, then what must not change.
constexpr char kLookAround[] =
    "shell=$(pidof esh | tr ' ' '\\n' | sort -n | tail -n 1); sed -n 's/^RssAnon:[^0-9]*\\([0-9]*\\).*/\\1/p' "
    "/proc/$shell/status;"
    " ls /proc/$shell/fd; set -- /proc/[0-9]*; echo $#;"
    " find / -xdev -type f ! -path '/proc/*' ! -path '/sys/*' ! -path '/mnt/*' | sort | xargs sha256sum | sha256sum";

class BadLine {
 public:
  BadLine(std::unique_ptr<device::Device> device, unsigned seed)
      : device_(std::move(device)), seed_(seed), random_(seed) {}

  /// @return the process's exit status.
  int Run(std::size_t bytes) {
    if (const std::string problem = device_->Boot(); !problem.empty()) return Fail(problem);
    if (!Wait(kPrompt, milliseconds(20000))) return Fail("there is no first prompt");
    const std::size_t step = std::max<std::size_t>(bytes / 200, 100000);
    for (const std::string_view line : kPasted) Type(std::string(line) + "\r\x03");
    while (typed_ < step) TypeRubbish();  // what grows once has grown now
    State usual;
    if (!Look(usual)) return 1;
    const long first = usual.memory_kb;
    for (std::size_t until = typed_; typed_ < bytes;) {
      for (until += step; typed_ < until;) TypeRubbish();
      State state;
      if (!Look(state)) return 1;
      if (state.memory_kb > first + kNoGrowthKb)
        return Fail("memory has grown to " + std::to_string(state.memory_kb) + " KB");
      if (state.rest != usual.rest) return Fail("was\n" + usual.rest + "and is\n" + state.rest);
      usual.memory_kb = state.memory_kb;
    }
    std::printf("bad line, seed %u: %zu bytes typed, %zu printed, %d looks, %ld KB of memory, then %ld KB, 0 faults\n",
                seed_, typed_, printed_, looks_, first, usual.memory_kb);
    return 0;
  }

 private:
  int Fail(const std::string& problem) const {
    (void)std::fprintf(stderr, "bad line, seed %u: after %zu bytes: %s\nprinted last: %s\n", seed_, typed_,
                       problem.c_str(), tail_.c_str());
    return 1;
  }

  unsigned Random(unsigned least, unsigned most) {
    return std::uniform_int_distribution<unsigned>(least, most)(random_);
  }

  template <typename Texts>
  std::string OneOf(const Texts& texts) {
    return std::string(texts.at(Random(0, static_cast<unsigned>(texts.size()) - 1)));
  }

  /// A byte, but no "yes": noise does type "r" and Enter, which is "reboot".
  char RandomByte(unsigned most) {
    const char byte = static_cast<char>(Random(0, most));
    return byte == 'y' || byte == 'Y' ? 'n' : byte;
  }

  std::string Noise(unsigned most) {
    std::string bytes(Random(1, kMostAtOnce), '\0');
    for (char& byte : bytes) byte = RandomByte(most);
    return bytes;
  }

  void TypeRubbish() {
    if (Random(1, kRubbishPerPaste) == 1)  // what is pasted must be no answer to a question: Ctrl+C ends it
      return Type("\x03" + OneOf(kPasted) + (Random(0, 1) == 0 ? "\r" : "\r\n"));
    switch (Random(0, 6)) {
      case 0:
        return Type(Noise(0xff));
      case 1:
        return Type(Noise(0x7f));
      case 2:
        return Type(std::string(Random(1, kMostAtOnce), RandomByte(0xff)));  // a key is stuck
      case 3:
        return Type(OneOf(kHalfSequences));
      case 4:
        return Type(std::string(Random(1, 9), '\0'));  // breaks
      case 5:
        return device_->ResizeConsole(static_cast<unsigned short>(Random(0, 500)),
                                      static_cast<unsigned short>(Random(0, 500)));
      default:
        return Type(OneOf(std::array<std::string_view, 4>{"\x03", "\x1a", "\x13", "\r"}));
    }
  }

  /// Types all of it, and takes in meanwhile what is printed.
  void Type(std::string_view bytes) {
    TypePart(bytes);
    TypePart(kGo);
  }

  void TypePart(std::string_view bytes) {
    typed_ += bytes.size();
    const auto limit = Clock::now() + std::chrono::seconds(60);
    while (!bytes.empty() && Clock::now() < limit) {
      pollfd console{device_->Console(), POLLIN | POLLOUT, 0};
      (void)poll(&console, 1, 100);
      if ((console.revents & (POLLIN | POLLHUP)) == POLLHUP) return;  // the next look tells
      if ((console.revents & POLLIN) != 0) TakeIn();
      if ((console.revents & POLLOUT) == 0) continue;
      const ssize_t sent = write(device_->Console(), bytes.data(), bytes.size());
      if (sent > 0) bytes.remove_prefix(static_cast<std::size_t>(sent));
      if (sent <= 0) (void)poll(nullptr, 0, 5);  // the terminal is full, which poll does not tell
    }
  }

  void TakeIn() {
    std::array<char, 65536> block{};
    const ssize_t length = read(device_->Console(), block.data(), block.size());
    if (length <= 0) return;
    printed_ += static_cast<std::size_t>(length);
    tail_.append(block.data(), static_cast<std::size_t>(length));
    if (tail_.size() > 200) tail_.erase(0, tail_.size() - 200);
  }

  /// Takes in what is printed until it ends in a text. @return whether it does so in this time.
  bool Wait(std::string_view end, milliseconds time) {
    const auto limit = Clock::now() + time;
    while (!tail_.ends_with(end) && Clock::now() < limit) {
      pollfd console{device_->Console(), POLLIN, 0};
      if (poll(&console, 1, 20) > 0) TakeIn();
    }
    return tail_.ends_with(end);
  }

  /// Takes in what is printed until nothing comes any more.
  void WaitForSilence() {
    pollfd console{device_->Console(), POLLIN, 0};
    const auto limit = Clock::now() + std::chrono::seconds(60);
    while (Clock::now() < limit && poll(&console, 1, 500) > 0 && (console.revents & POLLIN) != 0) TakeIn();
  }

  /// Goes to the prompt of the user view, as an operator does, and looks around there. @return whether there is one.
  bool Look(State& state) {
    ++looks_;
    WaitForSilence();
    for (const std::string_view key : {"\x11\x03", "\x03", "\x1a"}) {
      tail_.clear();
      TypePart(key);
      (void)Wait("an operator's moment", milliseconds(400));
    }
    if (!Wait(kPrompt, milliseconds(2000)))
      return Fail(std::string("there is no prompt: ") + device::OutcomeName(device_->WaitForOutcome({}))) == 0;
    termios modes{};
    if (tcgetattr(device_->Console(), &modes) != 0) return Fail("there is no terminal") == 0;
    const device::CommandResult result = device_->Run(kLookAround);
    std::istringstream words(result.output);
    words >> state.memory_kb;
    state.rest.assign(std::istreambuf_iterator<char>(words), {});
    for (const tcflag_t flags : {modes.c_iflag, modes.c_oflag, modes.c_cflag, modes.c_lflag})
      state.rest += std::to_string(flags) + " ";
    for (const cc_t key : modes.c_cc) state.rest += std::to_string(key) + " ";
    return state.memory_kb > 0 || Fail("the shell is gone: " + result.errors) == 0;
  }

  std::unique_ptr<device::Device> device_;
  unsigned seed_;
  std::mt19937 random_;
  std::size_t typed_ = 0;
  std::size_t printed_ = 0;
  int looks_ = 0;
  std::string tail_;  ///< of what was printed
};

}  // namespace

int main(int argc, char** argv) {
  if (std::getenv("ESH_NO_NAMESPACES") != nullptr) return kSkipped;
  const std::size_t bytes = argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 100000000;
  const unsigned seed = argc > 2 ? static_cast<unsigned>(std::strtoul(argv[2], nullptr, 10)) : 1;
  device::BootOptions options = device::DefaultBootOptions();
  options.has_lab_servers = true;
  device::FillWithSamples(options.media);
  return BadLine(device::MakeNativeDevice(options), seed).Run(bytes);
}
