#include "device/device.h"

#include <filesystem>

namespace device {
namespace {

constexpr std::uint64_t kMegabyte = 1048576;

std::string MountPlace(const std::string& medium) { return ShellQuoted("/mnt/" + medium); }

}  // namespace

std::vector<Medium> DefaultMedia() { return {{"flash:", 32 * kMegabyte, ""}, {"cfa0:", 16 * kMegabyte, ""}}; }

void FillWithSamples(std::vector<Medium>& media) {
  for (Medium& medium : media) {
    // The directory is named like the medium without its colon.
    const std::string samples = ESH_DEVICE_PACKAGES "/" + medium.name.substr(0, medium.name.find(':'));
    if (std::filesystem::is_directory(samples)) medium.contents = samples;
  }
}

BootOptions DefaultBootOptions() {
  BootOptions options;
  options.shell = ESH_DEVICE_SHELL;
  options.media = DefaultMedia();
  return options;
}

const char* OutcomeName(Outcome outcome) {
  switch (outcome) {
    case Outcome::kRunning:
      return "running";
    case Outcome::kHandedOver:
      return "handed over";
    case Outcome::kShellEnded:
      return "shell ended";
    case Outcome::kRebooted:
      return "rebooted";
    case Outcome::kPoweredOff:
      return "powered off";
    case Outcome::kDied:
      return "died";
  }
  return "unknown";
}

std::optional<std::string> Device::ReadFile(const std::string& path) {
  CommandResult result = Run("exec cat < " + ShellQuoted(path));
  if (!result.finished || result.status != 0) return std::nullopt;
  return std::move(result.output);
}

bool Device::WriteFile(const std::string& path, const std::string& bytes) {
  const CommandResult result = Run("exec cat > " + ShellQuoted(path), bytes);
  return result.finished && result.status == 0;
}

bool Device::FillMedium(const std::string& name) {
  // Small pieces last, for what is left when a large one no longer fits.
  const std::string command = "cd " + MountPlace(name) +
                              " && for size in 65536 512; do dd if=/dev/zero bs=$size >> fill 2>/dev/null; done;"
                              " sync; df -k . | awk 'END {exit $4 > 0}'";
  const CommandResult result = Run(command);
  return result.finished && result.status == 0;
}

bool Device::ProtectMedium(const std::string& name) {
  // Only this mount: an ordinary user may not remount a file system of the machine's memory.
  const CommandResult result = Run("mount -o remount,bind,ro " + MountPlace(name));
  return result.finished && result.status == 0;
}

std::string ShellQuoted(const std::string& text) {
  std::string quoted = "'";
  for (const char character : text)
    if (character == '\'')
      quoted += "'\\''";
    else
      quoted += character;
  return quoted + "'";
}

}  // namespace device
