#include <chrono>
#include <cstdlib>
#include <random>
#include <sstream>

#include "tests/device/operator_console.h"

namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

constexpr unsigned kMostAtOnce = 800;  // the terminal holds as much while its output is stopped
constexpr unsigned kRubbishPerHangUp = 100;
constexpr unsigned kRubbishPerPaste = 400;  // what is pasted runs tools, which take their time
#ifdef __SANITIZE_ADDRESS__
constexpr long kNoGrowthKb = 4096;  // a sanitizer keeps what was freed, and knows of leaks by itself
#else
constexpr long kNoGrowthKb = 256;  // the C library keeps up to 128 KB for later
#endif
constexpr char kGo[] = "\x11";  // XON

/// Lines with the answers to their questions; none of them waits for what no key ends.
constexpr char kPasted[] =
    "dir|dir /all|d\t\t\t|display version|display ip routing-table|display ipv6 routing-table|display interface m-eth0|"
    "display install package system.bin|display install package bad/forged.bin|more logs/logfile.log|more \t\t\t|"
    "copy readme.txt new\ry\ry|move new cfa0:\ry|delete cfa0:/new\ry|mkdir made|rmdir made\ry|pwd|install ?|"
    "telnet 10.0.0.2|ssh2 10.0.0.2\rx|reset ssh public-key|ping -c 2 10.0.0.1|ping 10.0.0.1|ping ipv6 fd00::1|"
    "tftp 10.0.0.1 get image.bin flash:/got\ry|ftp 10.0.0.1 get image.bin flash:/got\roperator\rharbour\ry|"
    "system-view|interface m-eth0|ip address 10.0.0.2 24|ip gateway 10.0.0.254|ipv6 address fd00::2 64|"
    "undo ip address|shutdown|undo shutdown";
constexpr char kHalfSequences[] = "\x1b|\x1b[|\x1bO|\x1b[3|\x1b[1;5|\x1b[200~|\x1b[A\x1b[|\xc3|\x1bP";

std::vector<std::string> TextsOf(const char* joined) {
  std::istringstream stream(joined);
  std::vector<std::string> texts;
  for (std::string text; std::getline(stream, text, '|');) texts.push_back(text);
  return texts;
}

/// A console whose line is bad: seeded rubbish at full speed. ESH_BAD_LINE="BYTES SEED" has it last longer.
struct NativeBadLine : OperatorConsole {
  void SetUp() override {
    if (const char* numbers = std::getenv("ESH_BAD_LINE")) std::istringstream(numbers) >> bytes_ >> seed_;
    random_.seed(seed_);
    options.has_lab_servers = true;
    options.environment.emplace_back("ASAN_OPTIONS=quarantine_size_mb=1");  // what was freed would be kept, and counted
    device::FillWithSamples(options.media);
    BootToPrompt();
  }

  unsigned Random(unsigned least, unsigned most) {
    return std::uniform_int_distribution<unsigned>(least, most)(random_);
  }

  std::string OneOf(const std::vector<std::string>& texts) {
    return texts.at(Random(0, static_cast<unsigned>(texts.size()) - 1));
  }

  /// A byte, but no "yes": noise does type "r" and Enter, which is "reboot".
  char RandomByte(unsigned most) {
    const char byte = static_cast<char>(Random(0, most));
    return byte == 'y' || byte == 'Y' ? 'n' : byte;
  }

  std::string Noise(unsigned most) {
    std::string noise(Random(1, kMostAtOnce), '\0');
    for (char& byte : noise) byte = RandomByte(most);
    return noise;
  }

  std::string Rubbish() {
    if (Random(1, kRubbishPerPaste) == 1)  // it must be no answer to a question: Ctrl+C ends that
      return "\x03" + OneOf(pasted_) + (Random(0, 1) == 0 ? "\r" : "\r\n");
    return OneOf({
        Noise(0xff),
        Noise(0x7f),
        std::string(Random(1, kMostAtOnce), RandomByte(0xff)),  // a key is stuck
        OneOf(TextsOf(kHalfSequences)),
        std::string(Random(1, 9), '\0'),  // breaks
        OneOf({"\x03", "\x1a", "\x13", "\r"}),
    });
  }

  void TypeRubbish(std::size_t bytes) {
    for (const std::size_t until = typed_ + bytes; typed_ < until && !HasGivenUp();) {
      if (Random(1, kRubbishPerHangUp) == 1) Run("kill -HUP " + ShellPid());
      if (Random(0, 6) == 0)
        Device().ResizeConsole(static_cast<unsigned short>(Random(0, 500)),
                               static_cast<unsigned short>(Random(0, 500)));
      const std::string rubbish = Rubbish();
      typed_ += rubbish.size();
      Type(rubbish + kGo);
      Forget();
    }
  }

  void Forget() {
    said_ += printed_.size();
    printed_.clear();
    waited_for_ = 0;
  }

  /// Goes to the prompt of the user view, as an operator does. @return the shell's own memory in KB.
  long Memory() {
    for (const auto limit = Clock::now() + kPatience; TakeIn(milliseconds(500)) && Clock::now() < limit;) {
    }
    for (const std::string key : {"\x11\x03", "\x03", "\x1a"}) {
      Forget();
      Type(key);
      Listen(milliseconds(400));
    }
    for (const auto limit = Clock::now() + std::chrono::seconds(2); !printed_.ends_with("<boot>");) {
      if (Clock::now() > limit) GiveUp(std::string("no prompt; ") + OutcomeName(Device().WaitForOutcome({})));
      if (HasGivenUp()) return 0;
      TakeIn(milliseconds(20));
    }
    return std::stol(Run("awk '/RssAnon/ {print $2}' /proc/" + ShellPid() + "/status"));
  }

  /// What must not change: descriptors, processes, the terminal's modes, files outside of the media.
  std::string World() {
    return Run("ls /proc/" + ShellPid() + "/fd; set -- /proc/[0-9]*; echo $#; stty -g < " + ConsolePath() +
               "; find / -xdev -type f ! -path '/proc/*' ! -path '/sys/*' ! -path '/mnt/*' | sort | xargs sha256sum");
  }

  std::size_t bytes_ = 500000;
  unsigned seed_ = 1;
  std::mt19937 random_;
  std::vector<std::string> pasted_ = TextsOf(kPasted);
  std::size_t typed_ = 0;
  std::size_t said_ = 0;
};

TEST_F(NativeBadLine, LeavesAPromptAndNothingElse) {
  const std::size_t step = std::max<std::size_t>(bytes_ / 200, 100000);
  for (const std::string& line : pasted_) Type(line + "\r\x03" + kGo);
  TypeRubbish(step);  // what grows once has grown now
  const long first = Memory();
  const std::string world = World();
  long memory = first;
  while (typed_ < bytes_ && !HasFailure()) {
    TypeRubbish(step);
    memory = Memory();
    EXPECT_LE(memory, first + kNoGrowthKb) << "after " << typed_ << " bytes";
    EXPECT_EQ(World(), world) << "after " << typed_ << " bytes";
  }
  std::printf("bad line, seed %u: %zu bytes typed, %zu printed, %ld KB of memory, then %ld KB\n", seed_, typed_, said_,
              first, memory);
}

}  // namespace
