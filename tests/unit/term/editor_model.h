#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>

#include "term/line_state.h"

/// The line editor as its rules put it, written for clarity: keys go in, and out come the bytes that must arrive at
/// the console, its line ends expanded.
class EditorModel {
 public:
  struct Setup {
    std::string term;
    std::uint64_t width = 80;  ///< in columns; 0: the terminal tells none, so that no line ever wraps
    std::string prompt = "<boot>";
    std::uint32_t mode = ESH_LINE_MODE_COMMAND;
    std::size_t max = kMaxCommandLine;
  };

  explicit EditorModel(const Setup& setup) : setup_(setup) {}

  /// The next read begins: the prompt, and the text that it goes on with.
  void Start(const std::string& text = {});
  /// One key, or the whole of an escape sequence.
  void Press(std::string_view key);
  /// What is to arrive since the last call.
  [[nodiscard]] std::string TakeOutput();

  [[nodiscard]] std::uint32_t EndKey() const { return end_; }
  /// The line as the caller gets it.
  [[nodiscard]] const std::string& Line() const { return line_; }
  [[nodiscard]] const std::string& Text() const { return text_; }
  /// All that is to be seen of it: the prompt and the text or its asterisks.
  [[nodiscard]] std::string Shown() const;
  /// Where the cursor stands in what is shown.
  [[nodiscard]] std::uint64_t CursorOffset() const { return setup_.prompt.size() + cursor_; }

 private:
  /// The keys' actions. @return false to ring the bell.
  [[nodiscard]] bool Act(std::string_view key);
  [[nodiscard]] bool Home() { return Go(0); }
  [[nodiscard]] bool End() { return Go(text_.size()); }
  [[nodiscard]] bool Left() { return cursor_ > 0 && Go(cursor_ - 1); }
  [[nodiscard]] bool Right() { return cursor_ < text_.size() && Go(cursor_ + 1); }
  [[nodiscard]] bool Backspace() { return Left() && Delete(); }
  [[nodiscard]] bool Delete();
  [[nodiscard]] bool Insert(char byte);
  [[nodiscard]] bool Enter();
  [[nodiscard]] bool Tab();
  [[nodiscard]] bool Help();
  [[nodiscard]] bool CtrlC() { return InCommandMode() || EndWith(ESH_LINE_END_CTRL_C, "\003"); }
  [[nodiscard]] bool CtrlZ() { return !InCommandMode() || EndWith(ESH_LINE_END_CTRL_Z, "\032"); }
  [[nodiscard]] bool Older();
  [[nodiscard]] bool Newer();

  [[nodiscard]] bool InCommandMode() const { return setup_.mode == ESH_LINE_MODE_COMMAND; }
  bool Go(std::size_t cursor);
  bool Recall(const std::string& text);
  bool EndWith(std::uint32_t end, const std::string& line);
  void Remember();

  void Redisplay();
  void LeaveFromTheEnd();
  void Move(std::uint64_t from, std::uint64_t to);
  void Step(std::uint64_t count, char direction);
  void WriteText(std::string_view text, std::uint64_t position);
  /// Nothing on a terminal that can do nothing.
  void Control(std::string_view bytes);

  Setup setup_;
  std::string text_;
  std::size_t cursor_ = 0;
  std::string shown_;
  std::size_t shown_cursor_ = 0;
  std::string output_;
  std::uint32_t end_ = ESH_LINE_END_NONE;
  std::string line_;
  std::deque<std::string> history_;  // oldest first
  std::size_t walk_ = 0;             // index of the line last recalled; as many as there are: not walking
};
