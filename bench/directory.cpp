/// Large directories: what "?", TAB and "dir" cost beside what busybox does with the same directory on the same
/// terminal.
#include <malloc.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "bench/booted_shell.h"
#include "bench/console_output.h"
#include "bench/measure.h"
#include "bench/own_shell.h"
#include "tests/support/console.h"

namespace {

constexpr int kSizes[] = {10'000, 30'000, 100'000};
constexpr int kRounds = 7;
constexpr int kLists = 10;
constexpr char kSizesFile[] = "/tmp/sizes";
/// Caches that a large directory no longer fits into bend a straight line; a square would come to 3 and 10.
constexpr double kStraight = 1.5;

/// A person who asks for a list waits hardly longer here than elsewhere.
constexpr double kListGoal = 1.5;
constexpr double kSameMemory = 1.1;
constexpr double kGivenBack = 1.25;  // a list kept would come to 50

constexpr char kHelpLine[] = "dir flash:/?";
constexpr char kShortHelpLine[] = "dir flash:/image-9999?";
constexpr char kTabLine[] = "dir flash:/\t";
constexpr char kDirLine[] = "dir\n";
constexpr char kPeerPrompt[] = "ready>";
constexpr char kPeerWord[] = "cat image-";
constexpr char kPeerErases[] = "\x1b[J";  // what stands right of its line, which it shows before and after the list

struct Times {
  double help;
  double tab;
  double dir;
  double peers_list;
  double peers_dir;
};

/// Adds files up to a number of them; their names come in no order.
void FillUpTo(int count) {
  static int made = 0;
  for (; made < count; ++made) {
    const long scattered = made * 7919L % 1'000'003;
    const std::ofstream file("image-" + std::to_string(scattered) + ".txt");
    Require(file.is_open(), "cannot make the files");
  }
}

double MillisOfEndedChildren() {
  rusage usage{};
  getrusage(RUSAGE_CHILDREN, &usage);
  return MillisOf(usage);
}

/// @return this process's memory in pages.
long ResidentPages() {
  long total = 0;
  long resident = 0;
  std::ifstream("/proc/self/statm") >> total >> resident;
  return resident;
}

/// Processor time of what a console runs. The time it waits for a processor does not count, so that other work on the
/// machine disturbs little.
/// @param body what it runs. @param watch reads what comes; when it returns, the console's process ends.
/// @return user and system time in milliseconds.
double MillisOfConsole(const std::function<void()>& body, const std::function<void(Console&)>& watch) {
  const double before = MillisOfEndedChildren();
  {
    Console console(body);
    watch(console);
  }
  return MillisOfEndedChildren() - before;
}

/// Processor time of one line, whose output goes to a terminal.
double MillisOfLine(const char* line, int names) {
  return MillisOfConsole([line] { RunLine(line); },
                         [names](Console& console) {
                           const std::string output = ReadToEnd(console);
                           Require(names == 0 || std::ranges::count(output, '\n') > names, "a list is not whole");
                         });
}

/// Processor time of ash's own list of the names that continue a word: from the second TAB on it is shown.
double MillisOfPeersList() {
  const auto become_ash = [] {
    setenv("PS1", kPeerPrompt, 1);
    Execute({"/bin/busybox", "ash"});
  };
  return MillisOfConsole(become_ash, [](Console& console) {
    (void)console.Expect(kPeerPrompt);
    console.Type(std::string(kPeerWord) + "\t\t");
    const std::string line = std::string(kPeerPrompt) + kPeerWord + kPeerErases;
    std::string list;
    while (list.find(".txt") == std::string::npos) list = ReadUntilOneOf(console, {line});
  });
}

double MillisOfPeersDir() {
  return MillisOfConsole(
      [] {
        Execute({"/bin/busybox", "ls", "-l"});
      },
      [](Console& console) { (void)ReadToEnd(console); });
}

/// Ours and the peers take turns, so that a change of the machine's pace meets all of them.
Times Measure(int names) {
  std::vector<double> help, tab, dir, peers_list, peers_dir;
  for (int round = 0; round < kRounds; ++round) {
    help.push_back(MillisOfLine(kHelpLine, names));
    tab.push_back(MillisOfLine(kTabLine, 0));
    peers_list.push_back(MillisOfPeersList());
    dir.push_back(MillisOfLine(kDirLine, names));
    peers_dir.push_back(MillisOfPeersDir());
  }
  return {Median(help), Median(tab), Median(dir), Median(peers_list), Median(peers_dir)};
}

/// Memory of one process before its first list, after it and after its last.
void MeasureMemory() {
  (void)MillisOfChild([] {
    malloc_trim(0);           // what filling the directory has left
    RunLine(kShortHelpLine);  // brings in the code
    std::ofstream sizes(kSizesFile);
    sizes << ResidentPages() << ' ';
    RunLine(kHelpLine);
    sizes << ResidentPages() << ' ';
    for (int list = 1; list < kLists; ++list) RunLine(kHelpLine);
    sizes << ResidentPages();
  });
  std::ifstream sizes(kSizesFile);
  double before = 0;
  double first = 0;
  double last = 0;
  sizes >> before >> first >> last;
  Require(before > 0 && first > 0 && last > 0, "memory is not told");
  Report("memory after one ? in 100,000 files / before (pages)", first, before, kGivenBack);
  Report("memory after ten ? in 100,000 files / one (pages)", last, first, kSameMemory);
}

}  // namespace

int main() {
  StartOwnShell();
  std::vector<Times> times;
  for (const int size : kSizes) {
    FillUpTo(size);
    times.push_back(Measure(size));
  }
  MeasureMemory();
  const Times& small = times[0];
  const Times& middle = times[1];
  const Times& large = times[2];
  Report("? in 100,000 files / ash's TAB TAB (CPU ms)", large.help, large.peers_list, kListGoal);
  Report("TAB in 100,000 files / ash's TAB TAB (CPU ms)", large.tab, large.peers_list, kListGoal);
  Report("? in 30,000 files / 3 times 10,000 (CPU ms)", middle.help, 3 * small.help, kStraight);
  Report("? in 100,000 files / 10 times 10,000 (CPU ms)", large.help, 10 * small.help, kStraight);
  Report("TAB in 30,000 files / 3 times 10,000 (CPU ms)", middle.tab, 3 * small.tab, kStraight);
  Report("TAB in 100,000 files / 10 times 10,000 (CPU ms)", large.tab, 10 * small.tab, kStraight);
  Report("dir of 100,000 files / ls -l (CPU ms)", large.dir, large.peers_dir, 1);
  return 0;
}
