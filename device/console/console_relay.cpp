#include <unistd.h>

#include <array>
#include <cerrno>
#include <string_view>

#include "device/console/console_session.h"

namespace device {
namespace {

constexpr char kLeaveKey = 0x1c;                        // Ctrl+\; Ctrl+] belongs to telnet on the device
constexpr std::chrono::milliseconds kRelayGlance{200};  // how often the device is looked at when nothing happens

void PassKeys(ConsoleSession& session) {
  std::array<char, 4096> block{};
  const ssize_t length = read(STDIN_FILENO, block.data(), block.size());
  if (length < 0 && (errno == EINTR || errno == EAGAIN)) return;
  if (length <= 0) {
    session.Leave(1);  // the terminal is gone
    return;
  }
  const std::string_view keys(block.data(), static_cast<std::size_t>(length));
  const std::size_t leave = keys.find(kLeaveKey);
  session.Type(keys.substr(0, leave));
  if (leave != std::string_view::npos) {
    session.Say("You have left the device.");
    session.Leave(0);
  }
}

}  // namespace

int RelayTerminal(Device& device, SessionSignals& signals) {
  const RawTerminal raw;
  ConsoleSession session(device, signals);
  session.Say("Ctrl+\\ leaves the device.");
  while (!session.Ended()) {
    const int input = session.IsTyping() ? -1 : STDIN_FILENO;  // no more keys than the console takes
    if (session.Step(input, kRelayGlance) && !session.Ended()) PassKeys(session);
  }
  return *session.Ended();
}

}  // namespace device
