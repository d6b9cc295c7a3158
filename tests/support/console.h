#pragma once

#include <sys/types.h>
#include <termios.h>

#include <cstddef>
#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "util/unique_handle.h"

/// A console of the test's own: a pseudo terminal whose far end is standard input, output and error of a child
/// process that runs the code under test. The child ends with the Console.
class Console {
 public:
  struct Kind {
    const char* term = "xterm";  ///< NULL: TERM is not set
    unsigned short columns = 80;
    unsigned short rows = 24;
  };
  /// Sends one message from the child to the test, beside the console.
  using Report = std::function<void(std::string_view)>;
  /// What the child runs.
  using Body = std::function<void(const Report&)>;

  Console(const Kind& kind, const Body& body);
  ~Console();
  Console(const Console&) = delete;
  Console& operator=(const Console&) = delete;

  /// Closes the terminal's window.
  void Close() { keyboard_.Reset(); }
  /// @return whether the child has ended; it is looked for once. @param status then its wait status.
  [[nodiscard]] bool HasEnded(int& status);
  /// Types keys; all of them are there at once.
  void Type(std::string_view keys) const;
  /// Waits for so many bytes of output. Fewer come back only when the child ended or nothing came for a long time.
  [[nodiscard]] std::string Read(std::size_t count) const;
  /// Waits for output that ends in `mark`.
  [[nodiscard]] std::string ReadUntil(std::string_view mark) const;
  /// Waits for output that ends in one of these marks, behind which the child waits for a key.
  [[nodiscard]] std::string ReadUntilOneOf(std::initializer_list<std::string_view> marks) const;
  /// All that the child wrote until it ended.
  [[nodiscard]] std::string ReadToEnd() const;
  /// Waits for the child's next message; empty when there will be none.
  [[nodiscard]] std::string NextReport() const;
  /// The console's settings as they are now.
  [[nodiscard]] termios Settings() const;
  [[nodiscard]] pid_t Child() const { return child_; }

 private:
  [[nodiscard]] bool ReadMore(std::string& output, std::size_t most) const;

  UniqueFd keyboard_;
  UniqueFd reports_;
  pid_t child_ = -1;
};

/// All that a console's settings say, to be compared.
[[nodiscard]] std::vector<unsigned> ModesOf(const termios& settings);
