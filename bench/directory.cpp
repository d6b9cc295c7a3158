/// Large directories: what "?", TAB and "dir" cost beside what busybox does with the same directory.
#include <unistd.h>

#include <fstream>
#include <string>
#include <vector>

#include "bench/measure.h"
#include "bench/own_shell.h"

namespace {

constexpr int kSizes[] = {10'000, 30'000, 100'000};
constexpr int kRounds = 7;
/// Caches that a large directory no longer fits into bend a straight line; a square would come to 3 and 10.
constexpr double kStraight = 1.5;

constexpr char kHelpLine[] = "dir flash:/?";
constexpr char kTabLine[] = "dir flash:/\t";
constexpr char kDirLine[] = "dir\n";

struct Times {
  double help;
  double tab;
  double dir;
  double names;
  double list;
};

void RunBusybox(const char* applet, const char* option) {
  execl("/bin/busybox", applet, option, nullptr);
  _exit(127);
}

/// Adds files up to a number of them; their names come in no order.
void FillUpTo(int count) {
  static int made = 0;
  for (; made < count; ++made) {
    const long scattered = made * 7919L % 1'000'003;
    const std::ofstream file("image-" + std::to_string(scattered) + ".txt");
    Require(file.is_open(), "cannot make the files");
  }
}

/// Ours and the peers take turns, so that a change of the machine's pace meets all of them.
Times Measure() {
  std::vector<double> help, tab, dir, names, list;
  for (int round = 0; round < kRounds; ++round) {
    help.push_back(MillisOfChild([] { RunLine(kHelpLine); }));
    tab.push_back(MillisOfChild([] { RunLine(kTabLine); }));
    names.push_back(MillisOfChild([] { RunBusybox("ls", "-F"); }));
    dir.push_back(MillisOfChild([] { RunLine(kDirLine); }));
    list.push_back(MillisOfChild([] { RunBusybox("ls", "-l"); }));
  }
  return {Median(help), Median(tab), Median(dir), Median(names), Median(list)};
}

}  // namespace

int main() {
  StartOwnShell();
  std::vector<Times> times;
  for (const int size : kSizes) {
    FillUpTo(size);
    times.push_back(Measure());
  }
  const Times& small = times[0];
  const Times& middle = times[1];
  const Times& large = times[2];
  Report("? in 100,000 files / ls -F (CPU ms)", large.help, large.names, 1);
  Report("TAB in 100,000 files / ls -F (CPU ms)", large.tab, large.names, 1);
  Report("? in 30,000 files / 3 times 10,000 (CPU ms)", middle.help, 3 * small.help, kStraight);
  Report("? in 100,000 files / 10 times 10,000 (CPU ms)", large.help, 10 * small.help, kStraight);
  Report("TAB in 30,000 files / 3 times 10,000 (CPU ms)", middle.tab, 3 * small.tab, kStraight);
  Report("TAB in 100,000 files / 10 times 10,000 (CPU ms)", large.tab, 10 * small.tab, kStraight);
  Report("dir of 100,000 files / ls -l (CPU ms)", large.dir, large.list, 0.9);
  return 0;
}
