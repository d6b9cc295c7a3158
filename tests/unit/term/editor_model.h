#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <string_view>

/// The line editor as its rules put it, written for clarity: keys go in, and out come the bytes that must arrive at
/// the console and the text and cursor that must be on its screen.
class EditorModel {
 public:
  enum class End { kNone = 0, kEnter = 1, kCtrlC = 2, kTab = 3, kHelp = 4, kCtrlZ = 5 };

  struct Setup {
    std::string term;
    std::uint64_t width = 80;  ///< in columns; 0: the terminal tells none, so that no line ever wraps
    std::string prompt;
    std::uint32_t mode = 0;
    std::size_t max = 511;
  };

  /// What a key must bring about.
  struct Expected {
    std::string bytes;      ///< as they arrive, line ends expanded by the console
    std::string screen;     ///< the same for a terminal that takes a move by 0 columns as none
    bool new_line = false;  ///< `screen` begins on a new line
  };

  /// Looks the terminal's capabilities up, through terminfo but not through the shell.
  explicit EditorModel(Setup setup);
  ~EditorModel();
  EditorModel(const EditorModel&) = delete;
  EditorModel& operator=(const EditorModel&) = delete;

  /// The next read begins: the prompt.
  void Start();
  /// One key, or the whole of an escape sequence.
  void Press(std::string_view key);
  /// What the caller does with a line that ended: line break, then the next read, which goes on with the line after
  /// TAB and "?".
  void GoOn();
  /// What is to be seen since the last call.
  [[nodiscard]] Expected TakeExpected();

  [[nodiscard]] End EndKey() const { return end_; }
  /// The line as the caller gets it.
  [[nodiscard]] const std::string& Line() const { return line_; }
  [[nodiscard]] const std::string& Text() const { return text_; }

  /// What the screen shows of the line, row by row.
  [[nodiscard]] std::string ScreenRow(std::uint64_t row) const;
  [[nodiscard]] std::uint64_t CursorRow() const;
  [[nodiscard]] std::uint64_t CursorColumn() const;

 private:
  [[nodiscard]] bool Act(std::string_view key);
  [[nodiscard]] bool Insert(char byte);
  [[nodiscard]] bool Delete();
  [[nodiscard]] bool Left();
  [[nodiscard]] bool Right();
  [[nodiscard]] bool Older();
  [[nodiscard]] bool Newer();
  void Recall(std::string text);
  void Remember();
  void EndWith(End end, std::string line);
  void MoveToEnd();

  void Redisplay();
  void Move(std::uint64_t from, std::uint64_t to);
  void WriteText(std::string_view text, std::uint64_t position);
  void ClearAndRestart(std::string text);
  void Send(std::string_view bytes);
  void SendCapability(const char* name, std::uint64_t count);
  [[nodiscard]] std::uint64_t RowOf(std::uint64_t position) const;
  [[nodiscard]] std::uint64_t ColumnOf(std::uint64_t position) const;

  Setup setup_;
  std::string text_;
  std::size_t cursor_ = 0;
  std::string shown_;
  std::size_t shown_cursor_ = 0;
  End end_ = End::kNone;
  std::string line_;
  std::deque<std::string> history_;  // oldest first
  std::size_t walk_ = kNotWalking;   // index of the line last recalled
  Expected expected_;
  bool wrap_pending_ = false;  // a prompt that fills its row leaves the cursor in the last column

  static constexpr std::size_t kNotWalking = SIZE_MAX;
};
