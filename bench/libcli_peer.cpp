/// The peer of bench_lines: libcli with 100 commands runs one of them as often as told.
#include <libcli.h>

#include <cstdio>
#include <cstdlib>

namespace {

constexpr int kTopics = 20;
constexpr int kCommandsOfTopic = 5;
constexpr char kLine[] = "topic10 thing2";  // neither the first nor the last

int g_runs = 0;

int CountRun(cli_def* /*cli*/, const char* /*command*/, char** /*words*/, int /*count*/) {
  ++g_runs;
  return CLI_OK;
}

cli_command* Add(cli_def* cli, cli_command* parent, const char* word, int number, bool runs) {
  char name[32];
  std::snprintf(name, sizeof(name), "%s%d", word, number);
  return cli_register_command(cli, parent, name, runs ? CountRun : nullptr, PRIVILEGE_UNPRIVILEGED, MODE_EXEC, "Help");
}

/// Each topic has four commands of two words and one of three.
void AddCommands(cli_def* cli) {
  for (int topic = 0; topic < kTopics; ++topic) {
    cli_command* first = Add(cli, nullptr, "topic", topic, false);
    for (int thing = 0; thing < kCommandsOfTopic - 1; ++thing) Add(cli, first, "thing", thing, true);
    Add(cli, Add(cli, first, "more", topic, false), "thing", topic, true);
  }
}

}  // namespace

/// Callgrind counts while this runs.
extern "C" __attribute__((noinline)) void RunMeasuredLines(cli_def* cli, int count) {
  for (int i = 0; i < count; ++i) cli_run_command(cli, kLine);
}

int main(int argc, char** argv) {
  const int count = argc == 2 ? static_cast<int>(std::strtol(argv[1], nullptr, 10)) : 1;
  cli_def* cli = cli_init();
  AddCommands(cli);
  RunMeasuredLines(cli, count);
  cli_done(cli);
  return g_runs == count ? EXIT_SUCCESS : EXIT_FAILURE;
}
