/// Command lines in bulk. "execute COUNT" runs the same command over and over, for callgrind to count its
/// instructions; "leak" looks at what many lines leave behind.
#include <fcntl.h>
#include <malloc.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <string>
#include <string_view>

#include "bench/measure.h"
#include "bench/own_shell.h"
#include "shell/command/command_table.h"
#include "shell/parser.h"
#include "term/line_editor.h"
#include "tests/support/private_root.h"
#include "util/result.h"

namespace {

int g_runs = 0;

std::uint32_t CountRun() {
  ++g_runs;
  return kSuccess;
}

/// A command as long as "display version" whose handler costs nothing. It is the last of the whole set.
constexpr CommandRow kMeasuredCommand[] = {
    {CountRun, kUserView, {Word("display", "Display information"), Word("nothing", "Display nothing")}},
};
constexpr char kMeasuredLine[] = "display nothing\n";

/// Twenty lines as an operator might type them, with mistakes, help, completion and the history. None starts a tool
/// or asks a question.
constexpr std::string_view kTyped =
    "pwd\n dir\n dir /all\n dir flash:/\n dir flash:/no-such-file\n system-view\n display\n quit\n"
    "nonsense\n dir a b c\n display nothing\n display nothing more\n di\t nothing\n?\n dir ?\b\n dir flash:/?\n"
    "dir flash:/\t\t\n \x1b[A\x1b[A\x1b[B\n system-view\n \x1a\n p\x02\x06\x01\x05wd\n";
constexpr int kFewLines = 1'000;
constexpr int kManyLines = 100'000;

struct Footprint {
  std::size_t heap;
  long peak_resident;
  std::ptrdiff_t descriptors;
};

Footprint TakeFootprint() {
  const struct mallinfo2 heap = mallinfo2();
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  const std::filesystem::directory_iterator descriptors("/proc/self/fd");
  return {heap.uordblks + heap.hblkhd, usage.ru_maxrss, std::distance(begin(descriptors), end(descriptors))};
}

/// Types the lines over and over until so many were executed or answered.
void TypeLines(int count) {
  for (int lines = 0; lines < count;) {
    lseek(STDIN_FILENO, 0, SEEK_SET);
    for (std::size_t typed = 0; typed < kTyped.size(); typed = static_cast<std::size_t>(lseek(0, 0, SEEK_CUR))) {
      ESH_CmdParser(ESH_LINE_GetCmdLine());
      ++lines;
    }
  }
}

void MeasureLeaks() {
  WriteFile("/tmp/typed", std::string(kTyped));
  const int report = dup(STDOUT_FILENO);
  dup2(open("/tmp/typed", O_RDONLY), STDIN_FILENO);
  dup2(open("/dev/null", O_WRONLY), STDOUT_FILENO);
  (void)TakeFootprint();  // the first one changes what it counts
  TypeLines(kFewLines);
  const Footprint few = TakeFootprint();
  TypeLines(kManyLines - kFewLines);
  const Footprint many = TakeFootprint();
  std::fflush(stdout);
  dup2(report, STDOUT_FILENO);
  const auto number = [](auto value) { return static_cast<double>(value); };
  Report("heap in use after 100,000 lines / 1,000 (bytes)", number(many.heap), number(few.heap), 1);
  Report("peak memory after 100,000 lines / 1,000 (KB)", number(many.peak_resident), number(few.peak_resident), 1);
  Report("descriptors after 100,000 lines / 1,000", number(many.descriptors), number(few.descriptors), 1);
}

}  // namespace

/// Callgrind counts while this runs.
extern "C" __attribute__((noinline)) void RunMeasuredLines(int count) {
  for (int i = 0; i < count; ++i) RunLine(kMeasuredLine);
}

int main(int argc, char** argv) {
  StartOwnShell();
  RegisterCommands(kMeasuredCommand);
  if (argc == 3 && std::string_view(argv[1]) == "execute") {
    const int count = static_cast<int>(std::strtol(argv[2], nullptr, 10));
    RunMeasuredLines(count);
    Require(g_runs == count, "the measured command does not run");
  } else {
    MeasureLeaks();
  }
  return EXIT_SUCCESS;
}
