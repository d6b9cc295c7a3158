#include "tests/device/operator_console.h"

#include <chrono>
#include <cstdlib>

#include "tests/support/private_root.h"

namespace {

using std::chrono::milliseconds;

bool EndsInPrompt(std::string_view text) {
  return text.ends_with("<boot>") || text.ends_with("[boot]") || text.ends_with("[boot-m-eth0]");
}

std::string DeviceName() {
  const char* name = std::getenv("ESH_TEST_DEVICE");
  return name == nullptr ? "native" : name;
}

/// Skips all that this program tests where there can be no device.
class Machine : public testing::Environment {
  void SetUp() override {
    ASSERT_TRUE(DeviceName() == "arm64" || DeviceName() == "native") << DeviceName();
    if (const char* reason = WhyNoNamespaces()) GTEST_SKIP() << reason;
  }
};
[[maybe_unused]] const testing::Environment* const machine = testing::AddGlobalTestEnvironment(new Machine);

}  // namespace

std::unique_ptr<device::Device> OperatorConsole::device_;
device::BootOptions OperatorConsole::device_options_;

bool OperatorConsole::IsArm64() { return DeviceName() == "arm64"; }

void OperatorConsole::TearDown() {
  if (HasFailure()) ADD_FAILURE() << "on the " << DeviceName() << " device, whose console says:\n" << printed_;
  if (HasFailure() || !others_may_use_) device_.reset();
}

bool OperatorConsole::UseDevice() {
  others_may_use_ = true;
  if (device_ == nullptr || device_options_ != options) {
    BootToPrompt();
    return true;
  }
  is_booted_ = true;
  Press("\x1anext\r", "next");  // what the test before has not waited for comes before that
  Expect("Unrecognized");
  Expect("<boot>");
  Run("rm -rf /mnt/*/* /mnt/*/.[!.]* /tmp/*");
  return false;
}

void OperatorConsole::Boot() {
  if (!is_booted_) NewDevice();
  is_booted_ = true;
  if (device_ == nullptr) {
    device_ = IsArm64() ? device::MakeArm64Device(options) : device::MakeNativeDevice(options);
    device_options_ = options;
  }
  printed_.clear();
  waited_for_ = 0;
  const std::string problem = device_->Boot();
  if (!problem.empty()) GiveUp("the device does not start: " + problem);
}

void OperatorConsole::BootToPrompt() {
  Boot();
  Expect("<boot>");
}

void OperatorConsole::NewShell() {
  Run("kill -9 " + ShellPid());
  Expect("Press Enter to start the emergency shell again");
  Press("\r", "<boot>");
}

std::string OperatorConsole::Command(const std::string& line, const std::string& keys) {
  const auto deadline = std::chrono::steady_clock::now() + kPatience;
  TakeIn(milliseconds(0));
  const std::size_t start = printed_.size();
  Type(line + "\r");
  while (!keys.empty() && !HasGivenUp() && printed_.find('\n', start) == std::string::npos && TakeIn(kPatience)) {
    // What answers a question is typed when the line has been read.
  }
  Type(keys);
  while (!EndsInPrompt(std::string_view(printed_).substr(start)) || TakeIn(milliseconds(20))) {
    if (HasGivenUp()) return {};
    if (std::chrono::steady_clock::now() > deadline) GiveUp("no prompt after: " + line);
    TakeIn(milliseconds(100));
  }
  waited_for_ = printed_.size();
  const std::string all = Lines(start);
  const std::size_t echo_end = all.find('\n') + 1;
  return all.substr(echo_end, all.rfind('\n') + 1 - echo_end);
}

void OperatorConsole::ExpectAll(const std::vector<Exchange>& exchanges) {
  for (const Exchange& exchange : exchanges)
    EXPECT_EQ(Command(exchange.line, exchange.keys), exchange.printed) << exchange.line;
}

std::string OperatorConsole::Press(std::string_view keys, std::string_view text) {
  Type(keys);
  return Expect(text);
}

device::Outcome OperatorConsole::Outcome() {
  if (HasGivenUp()) return device::Outcome::kRunning;
  const device::Outcome outcome = device_->WaitForOutcome(kPatience);
  TakeIn(milliseconds(0));
  return outcome;
}

std::string OperatorConsole::Run(const std::string& command) {
  if (HasGivenUp()) return {};
  const device::CommandResult result = device_->Run(command);
  EXPECT_TRUE(result.finished && result.status == 0) << command << ": " << result.errors;
  return result.output;
}
