/// The shell on a console: what a key costs, what waiting costs, and how long it takes from exec to prompt.
#include "tests/support/console.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <functional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "bench/booted_shell.h"
#include "bench/console_output.h"
#include "bench/measure.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr char kTrace[] = "/tmp/trace";
constexpr char kPeerPrompt[] = "ready>";
constexpr int kStarts = 41;
constexpr int kIdleSeconds = 5;

void BecomePeer() {
  setenv("PS1", kPeerPrompt, 1);
  Execute({"/bin/busybox", "ash"});
}

double MillisToPrompt(std::string_view prompt, const std::function<void()>& body) {
  const auto start = Clock::now();
  Console console(body);
  Require(!console.Expect(prompt).empty(), "a shell shows no prompt");
  const std::chrono::duration<double, std::milli> elapsed = Clock::now() - start;
  EndFamily(console.Child());
  return elapsed.count();
}

void MeasureStart(const std::string& shell) {
  std::vector<double> ours;
  std::vector<double> peer;
  for (int i = 0; i < kStarts; ++i) {
    ours.push_back(MillisToPrompt(
        kPrompt, [&] { BecomeShell({shell}); }));
    peer.push_back(MillisToPrompt(kPeerPrompt, [] { BecomePeer(); }));
  }
  Report("from exec to prompt / ash (ms)", Median(ours), Median(peer), 2.3);
}

/// What the terminal gets for these keys when a text that grows or shrinks at its end is sent in part, any other change
/// sends it anew, and the cursor moves by one sequence.
constexpr double kDueBytes = 1817;

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
    const std::string_view call = std::string_view(line).substr(line.find(' ') + 1);
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
  Console console([&] { BecomeShell({"/usr/bin/strace", "-f", "-qq", "-e", "signal=none", "-o", kTrace, shell}); });
  (void)ReadUntilOneOf(console, {kPrompt});
  const auto press = [&](char key) {
    console.Type(std::string(1, key));
    arrived += ReadAnswer(console).size();
  };
  std::ranges::for_each(keys, press);
  std::this_thread::sleep_for(std::chrono::seconds(kIdleSeconds));
  press('.');
  EndFamily(console.Child());
  const Trace trace = ReadTrace();
  Require(trace.keys.size() == keys.size() + 1, "the trace misses keys");
  const double count = static_cast<double>(trace.keys.size());
  Report("bytes per key / rule of redisplay", static_cast<double>(arrived) / count, kDueBytes / count, 1);
  Report("writes for one key, most / limit", Most(trace.keys, &KeyCost::writes), 1, 1);
  Report("system calls for one key, most / limit", Most(trace.keys, &KeyCost::calls), 3, 1);
  Report("wake-ups a second at the prompt / limit",
         static_cast<double>(trace.calls_while_waiting) / static_cast<double>(kIdleSeconds), 10, 1);
}

}  // namespace

int main(int argc, char** argv) {
  Require(argc == 2, "usage: bench_console SHELL");
  const std::string shell = ShellOnDevice(argv[1]);
  PrepareDevice();
  MeasureKeys(shell);
  MeasureStart(shell);
  return EXIT_SUCCESS;
}
