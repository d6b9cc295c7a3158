#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include "device/console/console_relay.h"
#include "device/console/operator_terminal.h"
#include "device/device.h"
#include "device/native/native_device.h"

namespace {

constexpr char kUsage[] =
    "usage: esh-device [--shell PROGRAM]\n"
    "Boots a device in namespaces of this machine and connects its console with the terminal.\n"
    "When standard input is no terminal, its lines are typed on the console one by one.\n"
    "  --shell PROGRAM  boot this program instead of the shell of this build\n";
constexpr char kTerminalWithoutName[] = "vt100";

device::BootOptions OperatorOptions() {
  device::BootOptions options = device::DefaultBootOptions();
  const char* term = std::getenv("TERM");
  options.term = term == nullptr || *term == '\0' ? kTerminalWithoutName : term;
  const device::WindowSize window = device::OperatorWindow();
  options.columns = window.columns;
  options.rows = window.rows;
  device::FillWithSamples(options.media);
  return options;
}

/// A descriptor that the caller closed would be given to the next thing that is opened.
void OpenStandardDescriptors() {
  for (const int number : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(number, F_GETFD) < 0) (void)open("/dev/null", O_RDWR);
  }
}

}  // namespace

int main(int argc, char** argv) {
  OpenStandardDescriptors();
  device::BootOptions options = OperatorOptions();
  if (argc == 3 && std::strcmp(argv[1], "--shell") == 0) {
    options.shell = argv[2];
  } else if (argc != 1) {
    const bool asked = argc == 2 && std::strcmp(argv[1], "--help") == 0;
    (void)std::fputs(kUsage, asked ? stdout : stderr);
    return asked ? 0 : 2;
  }

  device::SessionSignals signals;
  const std::unique_ptr<device::Device> board = device::MakeNativeDevice(options);
  if (const std::string problem = board->Boot(); !problem.empty()) {
    (void)std::fprintf(stderr, "esh-device: %s\n", problem.c_str());
    return 1;
  }
  return isatty(STDIN_FILENO) != 0 ? device::RelayTerminal(*board, signals) : device::FeedInput(*board, signals);
}
