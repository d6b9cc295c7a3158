#include <unistd.h>

#include <array>
#include <cerrno>
#include <optional>
#include <string>
#include <string_view>

#include "device/console/console_session.h"

namespace device {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

/// Ends of a console's output that ask for input: the prompts of the views (shell/command/command_tree.h), questions of
/// the commands, the pager (term/pager.cpp), and what is asked for before another host is reached
/// (remote/credentials.cpp).
constexpr std::string_view kPrompts[] = {"<boot>",    "[boot]", "[boot-m-eth0]", "[Y/N]:", "---- More ----     ",
                                         "login as:", "user:",  "password:"};
constexpr std::size_t kTailLength = 64;
constexpr milliseconds kQuietAtPrompt{60};     // what looks like a prompt may still be the middle of an output
constexpr milliseconds kQuietElsewhere{3000};  // longer than ping's pause between two lines
constexpr milliseconds kFeedGlance{20};

/// Knows from a console's output whether it waits for input.
class PromptWatch {
 public:
  void Saw(std::string_view output) {
    if (output.empty()) return;
    last_event_ = Clock::now();
    for (const char character : output) See(character);
    if (tail_.size() > kTailLength) tail_.erase(0, tail_.size() - kTailLength);
  }
  /// What is silent for good reason waits for nothing.
  void Silent() { last_event_ = Clock::now(); }
  /// Something was typed: the prompt that was seen is used up.
  void Typed() {
    tail_.clear();
    last_event_ = Clock::now();
  }
  [[nodiscard]] bool IsWaiting() const {
    return Clock::now() - last_event_ > (EndsWithPrompt() ? kQuietAtPrompt : kQuietElsewhere);
  }

 private:
  /// Keeps the text and drops escape sequences: ESC, a '[' or nothing, parameters, and a final letter.
  void See(char character) {
    if (character == '\033')
      in_sequence_ = true;
    else if (in_sequence_)
      in_sequence_ = character == '[' || character < '@';
    else
      tail_ += character;
  }
  [[nodiscard]] bool EndsWithPrompt() const {
    for (const std::string_view prompt : kPrompts)
      if (std::string_view(tail_).ends_with(prompt)) return true;
    return false;
  }

  std::string tail_;
  bool in_sequence_ = false;
  Clock::time_point last_event_ = Clock::now();
};

/// Standard input, line by line, without blocking longer than a read that poll announced.
class InputLines {
 public:
  /// @return the next line without its end; nullopt when none is complete yet.
  std::optional<std::string> Next() {
    const std::size_t end = bytes_.find('\n');
    if (end == std::string::npos && (!at_end_ || bytes_.empty())) return std::nullopt;
    std::string line = bytes_.substr(0, end);
    bytes_.erase(0, end == std::string::npos ? end : end + 1);
    if (line.ends_with('\r')) line.pop_back();
    return line;
  }
  void ReadMore() {
    std::array<char, 4096> block{};
    const ssize_t length = read(STDIN_FILENO, block.data(), block.size());
    if (length > 0) bytes_.append(block.data(), static_cast<std::size_t>(length));
    at_end_ = length == 0 || (length < 0 && errno != EINTR && errno != EAGAIN);
  }
  [[nodiscard]] bool AtEnd() const { return at_end_ && bytes_.empty(); }

 private:
  std::string bytes_;
  bool at_end_ = false;
};

}  // namespace

int FeedInput(Device& device, SessionSignals& signals) {
  ConsoleSession session(device, signals);
  PromptWatch prompt;
  InputLines lines;
  bool wants_more = false;
  while (!session.Ended()) {
    const bool readable = session.Step(wants_more ? STDIN_FILENO : -1, kFeedGlance);
    prompt.Saw(session.Printed());
    if (session.IsStarting()) prompt.Silent();
    if (readable) lines.ReadMore();
    wants_more = false;
    if (session.Ended() || session.IsTyping() || !prompt.IsWaiting()) continue;
    if (const std::optional<std::string> line = lines.Next()) {
      session.Type(*line + "\r");
      prompt.Typed();
    } else if (lines.AtEnd()) {
      session.Say("End of input. The device is switched off.");
      session.Leave(0);
    } else {
      wants_more = true;
    }
  }
  return *session.Ended();
}

}  // namespace device
