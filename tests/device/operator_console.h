#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "device/device.h"
#include "tests/support/virtual_screen.h"

/// Waits until a condition holds. @return whether it does.
[[nodiscard]] bool Eventually(const std::function<bool()>& condition);

/// An operator at the console of a device: boots it, types, and looks at what is printed. The environment variable
/// ESH_TEST_DEVICE names the device, "native" or "arm64", so that every test runs on both. A suite whose name begins
/// with "Native" is about what only the native device has or can be made to do, and runs there alone.
class OperatorConsole : public testing::Test {
 protected:
  /// What the device is made of; changed before the first Boot.
  device::BootOptions options = device::DefaultBootOptions();

  void SetUp() override;
  void TearDown() override;

  /// Puts the device away; the next Boot makes another from the options.
  void NewDevice() { board_.reset(); }
  /// Starts the device; nothing is waited for.
  void Boot();
  /// Starts the device and waits for the prompt of the user view.
  void BootToPrompt();

  /// Presses keys.
  void Type(std::string_view keys);
  /// Waits until this is printed behind what was already waited for. @return what was printed up to there.
  std::string Expect(std::string_view text);
  /// Types a line and Enter, and waits for the next prompt. @return what was printed in between, lines ended by "\n".
  std::string Command(const std::string& line);
  /// Waits until the device's outcome is not that the shell runs.
  device::Outcome Outcome();
  /// Takes in what is printed for a while; for what must not be printed.
  void Listen(std::chrono::milliseconds time);

  /// Whether the device is the emulated one: its media are FAT, its modules and kernel settings are a kernel's.
  [[nodiscard]] static bool IsArm64();
  /// The console's path on the device.
  [[nodiscard]] static std::string ConsolePath() { return IsArm64() ? "/dev/ttyAMA0" : "/dev/pts/0"; }

  /// Runs a command on the device beside the shell, which must succeed. @return its output.
  std::string Run(const std::string& command);
  /// Replaces a tool or text of the device; before the first Boot.
  void Replace(const std::string& path, const std::string& text) { options.files.push_back({path, text}); }
  /// The process that reads the keys.
  std::string ShellPid();

  /// All that was printed since the boot.
  [[nodiscard]] const std::string& Printed() const { return printed_; }
  /// What the operator sees.
  [[nodiscard]] const VirtualScreen& Screen() const { return *screen_; }
  [[nodiscard]] device::Device& Board() { return *board_; }

 private:
  bool TakeIn(std::chrono::milliseconds time);

  std::unique_ptr<device::Device> board_;
  std::unique_ptr<VirtualScreen> screen_;
  std::string printed_;
  std::size_t waited_for_ = 0;
};

inline constexpr std::string_view kUp = "\x1b[A";
inline constexpr std::string_view kLeft = "\x1b[D";
inline constexpr std::string_view kCtrlC = "\x03";
inline constexpr std::string_view kCtrlZ = "\x1a";
