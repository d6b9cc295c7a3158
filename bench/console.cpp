/// The shell on a console: what a key costs, what waiting costs, and how long it takes from exec to prompt.
#include "tests/support/console.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "bench/measure.h"
#include "tests/support/private_root.h"
#include "tests/unit/term/editor_model.h"

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr char kMachine[] = "/host";  // where the private root keeps the machine's
constexpr char kTrace[] = "/tmp/trace";
constexpr char kPrompt[] = "<boot>";
constexpr char kPeerPrompt[] = "ready>";
constexpr int kStarts = 41;
constexpr int kIdleSeconds = 5;

/// A device whose start-up script is empty, whose modules are loaded, and whose only tool is busybox.
void PrepareDevice() {
  const std::string failure = EnterPrivateRoot();
  Require(failure.empty(), failure.c_str());
  fs::remove("/bin");  // it was a link to the machine's, which a shell that fails to start would change
  fs::create_directory("/bin");
  fs::create_symlink(std::string(kMachine) + "/bin/busybox", "/bin/busybox");
  AddMedium("flash:");
  WriteFile("/proc/modules", "addon 16384 0 - Live 0x0\n");
  WriteFile("/etc/pkg/esh/mount.sh", "#!/bin/busybox sh\n");
  fs::permissions("/etc/pkg/esh/mount.sh", fs::perms::owner_all);
}

void Execute(std::vector<std::string> words) {
  std::vector<char*> arguments;
  for (std::string& word : words) {
    arguments.push_back(word.data());
  }
  arguments.push_back(nullptr);
  execv(arguments[0], arguments.data());
}

/// Becomes the shell. It takes the console by itself, which it could not while this session holds it.
void BecomeShell(const std::vector<std::string>& command) {
  const std::string_view console(ttyname(STDIN_FILENO));
  WriteFile("/etc/pkg/esh/ttyname.conf", std::string(console.substr(console.find("/dev"))));
  std::signal(SIGHUP, SIG_IGN);
  ioctl(STDIN_FILENO, TIOCNOTTY);
  std::signal(SIGHUP, SIG_DFL);
  Execute(command);
}

void BecomePeer() {
  setenv("PS1", kPeerPrompt, 1);
  Execute({"/bin/busybox", "ash"});
}

/// Ends a process and all that it started: the shell is not the console's own child.
void EndFamily(pid_t process) {
  const std::string id = std::to_string(process);
  std::ifstream children(kMachine + ("/proc/" + id) + "/task/" + id + "/children");
  for (pid_t child = 0; children >> child;) {
    EndFamily(child);
  }
  kill(process, SIGKILL);
}

double MillisToPrompt(std::string_view prompt, const Console::Body& body) {
  const auto start = Clock::now();
  const Console console({}, body);
  const bool prompted = console.ReadUntil(prompt).ends_with(prompt);
  const std::chrono::duration<double, std::milli> elapsed = Clock::now() - start;
  EndFamily(console.Child());
  Require(prompted, "a shell shows no prompt");
  return elapsed.count();
}

void MeasureStart(const std::string& shell) {
  std::vector<double> ours;
  std::vector<double> peer;
  for (int i = 0; i < kStarts; ++i) {
    ours.push_back(MillisToPrompt(kPrompt, [&](const Console::Report&) { BecomeShell({shell}); }));
    peer.push_back(MillisToPrompt(kPeerPrompt, [](const Console::Report&) { BecomePeer(); }));
  }
  Report("from exec to prompt / ash (ms)", Median(ours), Median(peer), 2);
}

/// One-byte keys: a long line, then changes in its middle.
std::string TypedKeys() {
  const std::string left(30, '\x02');
  const std::string deleted(5, '\x7f');
  const std::string cut(5, '\x04');
  return std::string(100, 'a') + left + "insert" + deleted + cut + "\x01 \x05 end\x06\x06";
}

struct KeyCost {
  int calls = 0;
  int writes = 0;
};

/// What the system calls in the trace say of each key: from the read that got it up to the next read.
struct Trace {
  std::vector<KeyCost> keys;
  int calls_while_waiting = 0;  // before the last key
};

Trace ReadTrace() {
  Trace trace;
  int waiting = 0;
  std::ifstream file(kTrace);
  for (std::string line; std::getline(file, line);) {
    const std::string_view call = std::string_view(line).substr(line.find_first_of(" ") + 1);
    const bool reads_console = call.find("read(0, ") != std::string_view::npos;
    if (reads_console && call.ends_with("= 1")) {
      trace.calls_while_waiting = waiting;
      waiting = 0;
      trace.keys.push_back({1, 0});
    } else if (reads_console || waiting > 0) {
      ++waiting;
    } else if (!trace.keys.empty()) {
      ++trace.keys.back().calls;
      trace.keys.back().writes += call.find("write(") != std::string_view::npos ? 1 : 0;
    }
  }
  return trace;
}

template <typename Field>
int Most(const std::vector<KeyCost>& keys, Field field) {
  return std::ranges::max(keys, {}, field).*field;
}

void MeasureKeys(const std::string& shell) {
  const std::string keys = TypedKeys();
  std::size_t arrived = 0;
  std::size_t due = 0;
  const Console console({}, [&](const Console::Report&) {
    BecomeShell({"/usr/bin/strace", "-f", "-qq", "-e", "signal=none", "-o", kTrace, shell});
  });
  Require(console.ReadUntil(kPrompt).ends_with(kPrompt), "the shell shows no prompt under strace");
  EditorModel model({.term = "xterm", .width = 80, .prompt = kPrompt, .mode = 0, .max = 511});
  model.Start();
  (void)model.TakeExpected();
  const auto press = [&](char key) {
    const std::string typed(1, key);
    model.Press(typed);
    const std::string expected = model.TakeExpected().bytes;
    console.Type(typed);
    const std::string output = console.Read(expected.size());
    Require(output == expected, "a key is not answered as the rule of redisplay says");
    arrived += output.size();
    due += expected.size();
  };
  std::ranges::for_each(keys, press);
  std::this_thread::sleep_for(std::chrono::seconds(kIdleSeconds));
  press('.');
  EndFamily(console.Child());
  const Trace trace = ReadTrace();
  Require(trace.keys.size() == keys.size() + 1, "the trace misses keys");
  const double count = static_cast<double>(trace.keys.size());
  Report("bytes per key / rule of redisplay", static_cast<double>(arrived) / count, static_cast<double>(due) / count,
         1);
  Report("writes for one key, most / limit", Most(trace.keys, &KeyCost::writes), 1, 1);
  Report("system calls for one key, most / limit", Most(trace.keys, &KeyCost::calls), 3, 1);
  Report("wake-ups a second at the prompt / limit",
         static_cast<double>(trace.calls_while_waiting) / static_cast<double>(kIdleSeconds), 10, 1);
}

}  // namespace

int main(int argc, char** argv) {
  Require(argc == 2, "usage: bench_console SHELL");
  const std::string shell = kMachine + fs::absolute(argv[1]).string();
  PrepareDevice();
  MeasureKeys(shell);
  MeasureStart(shell);
  return EXIT_SUCCESS;
}
