#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "device/console/console_session.h"
#include "device/console/operator_terminal.h"
#include "device/device.h"

namespace {

constexpr char kUsage[] = "esh-device takes the options of ./run; ./run --help tells them\n";
constexpr char kKeyDirectory[] = "/etc/sign_pub_key/";
constexpr char kTerminalWithoutName[] = "vt100";

/// What the command line asks for.
struct Request {
  bool emulated = false;
  device::BootOptions options = device::DefaultBootOptions();
};

/// The key files of a directory of the host, with their places on the device.
std::vector<device::HostFile> KeysIn(const std::string& directory) {
  std::vector<device::HostFile> keys;
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(directory, error)) {
    const std::filesystem::path& file = entry.path();
    if (file.extension() == ".key") keys.push_back({file.string(), kKeyDirectory + file.filename().string()});
  }
  return keys;
}

std::string Absolute(const char* path) { return std::filesystem::absolute(path).string(); }

std::optional<Request> ReadArguments(std::span<char* const> arguments) {
  Request request;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string_view name = arguments[i];
    const bool has_value = i + 1 < arguments.size();
    if (name == "--arm64") {
      request.emulated = true;
    } else if (name == "--shell" && has_value) {
      request.options.shell = Absolute(arguments[++i]);
    } else if (name == "--tftp" && has_value) {
      request.options.lab_directory = Absolute(arguments[++i]);
    } else if (name == "--keys" && has_value) {
      request.options.host_files = KeysIn(Absolute(arguments[++i]));
      if (request.options.host_files.empty()) return std::nullopt;
    } else {
      return std::nullopt;
    }
  }
  return request;
}

std::unique_ptr<device::Device> MakeDevice(Request request) {
  device::BootOptions& options = request.options;
  const char* term = std::getenv("TERM");
  options.term = term == nullptr || *term == '\0' ? kTerminalWithoutName : term;
  const device::WindowSize window = device::OperatorWindow();
  options.columns = window.columns;
  options.rows = window.rows;
  options.has_lab_servers = true;
  device::FillWithSamples(options.media);
  return request.emulated ? device::MakeArm64Device(options) : device::MakeNativeDevice(options);
}

/// A descriptor that the caller closed would be given to the next thing that is opened.
void OpenStandardDescriptors() {
  for (const int number : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
    if (fcntl(number, F_GETFD) < 0) (void)open("/dev/null", O_RDWR);
}

}  // namespace

int main(int argc, char** argv) {
  OpenStandardDescriptors();
  const std::optional<Request> request = ReadArguments({argv + 1, argv + argc});
  if (!request) {
    (void)std::fputs(kUsage, stderr);
    return 2;
  }

  device::SessionSignals signals;
  const std::unique_ptr<device::Device> chosen = MakeDevice(*request);
  if (const std::string problem = chosen->PowerOn(); !problem.empty()) {
    (void)std::fprintf(stderr, "esh-device: %s\n", problem.c_str());
    return 1;
  }
  (void)std::fputs(chosen->LabNotice().c_str(), stderr);  // the output is the console's
  return isatty(STDIN_FILENO) != 0 ? device::RelayTerminal(*chosen, signals) : device::FeedInput(*chosen, signals);
}
