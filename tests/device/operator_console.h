#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "device/device.h"
#include "tests/support/console.h"

/// A line, the keys typed behind it (the answers), and all that is printed from there to the next prompt.
struct Exchange {
  const char* line;
  std::string keys;
  std::string printed;
};

/// An operator at the console of a device: boots it, types, and looks at what is printed. The environment variable
/// ESH_TEST_DEVICE names the device, "native" or "arm64", so that every test runs on both. A suite whose name begins
/// with "Native" is about what only the native device has or can be made to do, or would show nothing else on a real
/// kernel, and runs there alone.
///
/// The tests of a suite run in one process and share a device as far as they can: UseDevice takes over what the test
/// before has left. A test whose device is of no use to others boots one of its own.
class OperatorConsole : public testing::Test, public ConsoleEnd {
 public:
  /// Ends the suite's device.
  static void TearDownTestSuite() { device_.reset(); }

 protected:
  /// What the device is made of; changed before it is booted.
  device::BootOptions options = device::DefaultBootOptions();

  void TearDown() override;

  /// Stands at the prompt of the user view, with empty media and an empty /tmp, on a device that others may have used:
  /// the suite's, when it was made of the same options and no test failed on it, or else a new one.
  /// @return whether it is a new one.
  bool UseDevice();
  /// Puts the device away; the next Boot makes another from the options.
  static void NewDevice() { device_.reset(); }
  /// Starts a device of the test's own, or starts it again; nothing is waited for.
  void Boot();
  /// The same, and waits for the prompt of the user view.
  void BootToPrompt();
  /// Kills the shell and has another started on the device, whose port has no addresses then.
  void NewShell();

  /// Types a line and Enter, then the keys, and waits for the next prompt.
  /// @return what was printed in between, lines ended by "\n".
  std::string Command(const std::string& line, const std::string& keys = "");
  /// Types the lines one after another.
  void ExpectAll(const std::vector<Exchange>& exchanges);
  /// Presses keys and waits for what they lead to. @return what Expect returns.
  std::string Press(std::string_view keys, std::string_view text);
  /// Waits until the device's outcome is not that the shell runs.
  device::Outcome Outcome();

  /// Whether the device is the emulated one: its media are FAT, its modules and kernel settings are a kernel's.
  [[nodiscard]] static bool IsArm64();
  /// The console's path on the device.
  [[nodiscard]] static std::string ConsolePath() { return IsArm64() ? "/dev/ttyAMA0" : "/dev/pts/0"; }

  /// Runs a command on the device beside the shell, which must succeed. @return its output.
  std::string Run(const std::string& command);
  /// Replaces a tool or text of the device; before it is booted.
  void Replace(const std::string& path, const std::string& text) { options.files.push_back({path, text}); }
  /// The process that reads the keys: the newest of that name, for the older one only waits for it.
  std::string ShellPid() { return Run("echo -n $(pidof esh | tr ' ' '\\n' | sort -n | tail -n 1)"); }
  /// The console's modes; the same whenever the prompt is there.
  std::string Modes() { return Run("stty -a < " + ConsolePath()); }

  [[nodiscard]] device::Device& Device() { return *device_; }

 private:
  [[nodiscard]] int ConsoleFd() const override { return device_->Console(); }

  static std::unique_ptr<device::Device> device_;
  static device::BootOptions device_options_;  ///< what the device is made of
  bool is_booted_ = false;                     ///< by this test, or taken over by it
  bool others_may_use_ = false;
};

inline constexpr std::string_view kCtrlC = "\x03";
