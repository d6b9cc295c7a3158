#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <deque>
#include <map>
#include <string>
#include <string_view>
#include <utility>

#include "term/line_state.h"

/// The line editor as its rules put it, written for clarity: keys go in, and out come the bytes that it must
/// write to a terminal like xterm.
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
  void Start(const std::string& text = {}) {
    end_ = ESH_LINE_END_NONE;
    text_ = text;
    cursor_ = text.size();
    shown_.clear();
    shown_cursor_ = 0;
    output_ += setup_.prompt;
    Redisplay();
  }

  /// One key, or the whole of an escape sequence.
  void Press(std::string_view key) {
    if (!Act(key)) output_ += "\a";
    if (end_ == ESH_LINE_END_NONE) Redisplay();
  }

  /// What is to be written since the last call.
  [[nodiscard]] std::string TakeOutput() { return std::exchange(output_, {}); }

  [[nodiscard]] std::uint32_t EndKey() const { return end_; }
  /// The line as the caller gets it.
  [[nodiscard]] const std::string& Line() const { return line_; }
  /// All that is to be seen of it: the prompt and the text or its asterisks.
  [[nodiscard]] std::string Shown() const {
    return setup_.prompt + (setup_.mode == ESH_LINE_MODE_MASKED ? std::string(text_.size(), '*') : text_);
  }
  /// Where the cursor stands in what is shown.
  [[nodiscard]] std::uint64_t CursorOffset() const { return setup_.prompt.size() + cursor_; }

 private:
  /// The keys' actions. @return false to ring the bell.
  bool Act(std::string_view key) {
    using Model = EditorModel;
    static const std::map<std::string_view, bool (Model::*)()> kActions = {
        {"\001", &Model::Home},      {"\002", &Model::Left},    {"\003", &Model::CtrlC},
        {"\004", &Model::Delete},    {"\005", &Model::End},     {"\006", &Model::Right},
        {"\010", &Model::Backspace}, {"\t", &Model::Tab},       {"\n", &Model::Enter},
        {"\r", &Model::Enter},       {"\032", &Model::CtrlZ},   {"?", &Model::Help},
        {"\177", &Model::Backspace}, {"\033[A", &Model::Older}, {"\033[B", &Model::Newer},
        {"\033[C", &Model::Right},   {"\033[D", &Model::Left},  {"\033[3~", &Model::Delete},
    };
    if (const auto found = kActions.find(key); found != kActions.end()) return (this->*found->second)();
    const auto byte = static_cast<unsigned char>(key[0]);
    return byte < ' ' ? byte != '\033' : Insert(key[0]);
  }

  bool Home() { return Go(0); }
  bool End() { return Go(text_.size()); }
  bool Left() { return cursor_ > 0 && Go(cursor_ - 1); }
  bool Right() { return cursor_ < text_.size() && Go(cursor_ + 1); }
  bool Backspace() { return Left() && Delete(); }
  bool Delete() {
    if (cursor_ == text_.size()) return false;
    text_.erase(cursor_, 1);
    return true;
  }

  bool Insert(char byte) {
    if (text_.size() == setup_.max) {
      output_ += "\a";  // and a second one for the refusal
      return false;
    }
    text_.insert(cursor_, 1, byte);
    return Go(cursor_ + 1);
  }

  bool Enter() {
    if (!InCommandMode()) return EndWith(ESH_LINE_END_ENTER, text_);
    Remember();
    LeaveFromTheEnd();
    return EndWith(ESH_LINE_END_ENTER, text_ + "\n");
  }

  bool Tab() {
    if (!InCommandMode()) return true;
    const std::string kept = text_.substr(0, cursor_);
    LeaveFromTheEnd();
    return EndWith(ESH_LINE_END_TAB, kept + "\t");
  }

  bool Help() {
    if (!Insert('?')) return false;
    if (InCommandMode()) {
      Redisplay();
      EndWith(ESH_LINE_END_HELP, text_);
    }
    return true;
  }

  bool CtrlC() { return InCommandMode() || EndWith(ESH_LINE_END_CTRL_C, "\003"); }
  bool CtrlZ() { return !InCommandMode() || EndWith(ESH_LINE_END_CTRL_Z, "\032"); }
  bool Older() { return !InCommandMode() || (walk_ > 0 && Recall(walk_ - 1)); }
  bool Newer() { return !InCommandMode() || (walk_ < history_.size() && Recall(walk_ + 1)); }

  [[nodiscard]] bool InCommandMode() const { return setup_.mode == ESH_LINE_MODE_COMMAND; }
  bool Go(std::size_t cursor) {
    cursor_ = cursor;
    return true;
  }

  bool Recall(std::size_t index) {
    walk_ = index;
    text_ = index == history_.size() ? "" : history_[index];
    return End();
  }

  bool EndWith(std::uint32_t end, const std::string& line) {
    end_ = end;
    line_ = line;
    return true;
  }

  void Remember() {
    const std::size_t first = text_.find_first_not_of(' ');
    const bool remark = first == std::string::npos || text_[first] == '!' || text_[first] == '#';
    if (!remark && (history_.empty() || history_.back() != text_)) history_.push_back(text_);
    if (history_.size() > 10) history_.pop_front();
    walk_ = history_.size();
  }

  void Redisplay() {
    const bool longer = text_.starts_with(shown_);
    const bool shorter = shown_.starts_with(text_);
    if (text_ != shown_) {
      const std::size_t kept = longer ? shown_.size() : shorter ? text_.size() : 0;
      Move(shown_cursor_, kept);
      if (!longer) output_ += "\033[J";
      WriteTextFrom(kept);
      shown_cursor_ = text_.size();
    }
    Move(shown_cursor_, cursor_);
    shown_ = text_;
    shown_cursor_ = cursor_;
  }

  void LeaveFromTheEnd() {
    Move(cursor_, text_.size());
    cursor_ = text_.size();
  }

  void Move(std::uint64_t from, std::uint64_t to) {
    const auto width = static_cast<std::int64_t>(setup_.width == 0 ? 1'000'000 : setup_.width);
    const auto start = static_cast<std::int64_t>(setup_.prompt.size() + from);
    const auto goal = static_cast<std::int64_t>(setup_.prompt.size() + to);
    Step(goal / width - start / width, 'B', 'A');
    if (goal / width != start / width && setup_.term == "linux")  // which loses the column
      output_ += "\033[" + std::to_string(width) + "D\033[" + std::to_string(goal % width) + "C";
    else
      Step(goal % width - start % width, 'C', 'D');
  }

  void Step(std::int64_t count, char forth, char back) {
    if (count != 0) output_ += "\033[" + std::to_string(std::abs(count)) + (count > 0 ? forth : back);
  }

  void WriteTextFrom(std::size_t position) {
    while (position < text_.size()) {
      output_ += setup_.mode == ESH_LINE_MODE_MASKED ? '*' : text_[position];
      ++position;
      if (setup_.width != 0 && (position + setup_.prompt.size()) % setup_.width == 0) output_ += "\r\n";
    }
  }

  Setup setup_;
  std::string text_;
  std::size_t cursor_ = 0;
  std::string shown_;
  std::size_t shown_cursor_ = 0;
  std::string output_;
  std::uint32_t end_ = ESH_LINE_END_NONE;
  std::string line_;
  std::deque<std::string> history_;  ///< oldest first
  std::size_t walk_ = 0;             ///< index of the line last recalled; as many as there are: not walking
};
