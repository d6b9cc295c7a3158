#pragma once

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <string>
#include <string_view>

#include "util/unique_handle.h"

/// The near end of a terminal: somebody who types and looks at what the far end prints. A far end that leaves him in
/// the lurch fails the test, and from then on nothing is waited for.
class ConsoleEnd {
 public:
  virtual ~ConsoleEnd() = default;

  /// Presses keys.
  void Type(std::string_view keys);
  /// Waits until this is printed behind what was already waited for.
  /// @return what was printed up to there, lines ended by "\n".
  std::string Expect(std::string_view text);
  /// Takes in what is printed for a while; for what must not be printed.
  void Listen(std::chrono::milliseconds time);

 protected:
  /// Only a fault is silent this long. Less than the time after which a question answers itself by no.
  static constexpr std::chrono::seconds kPatience{25};

  /// The descriptor, which does not block.
  [[nodiscard]] virtual int ConsoleFd() const = 0;
  /// @return whether anything was printed in this time.
  bool TakeIn(std::chrono::milliseconds time);
  void GiveUp(const std::string& problem);
  [[nodiscard]] bool HasGivenUp() const { return has_given_up_; }
  /// What was printed from one place to another, lines ended by "\n".
  [[nodiscard]] std::string Lines(std::size_t start, std::size_t end = std::string::npos) const;

  std::string printed_;  ///< all that was printed so far
  std::size_t waited_for_ = 0;

 private:
  bool has_given_up_ = false;
};

/// A console of the test's own: a pseudo terminal whose far end is standard input, output and error of a child
/// process that runs the code under test. The child ends with the Console.
class Console : public ConsoleEnd {
 public:
  /// @param body what the child runs, on 24 rows of 80 columns under TERM=xterm.
  explicit Console(const std::function<void()>& body);
  /// Kills the child and waits for its end.
  ~Console() override;
  Console(const Console&) = delete;
  Console& operator=(const Console&) = delete;

  /// Its process ID, also when it has ended.
  [[nodiscard]] pid_t Child() const { return child_; }
  [[nodiscard]] int ConsoleFd() const override { return keyboard_.Get(); }

 private:
  UniqueFd keyboard_;
  pid_t child_ = -1;
};
