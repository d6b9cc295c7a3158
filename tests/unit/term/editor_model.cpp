#include "tests/unit/term/editor_model.h"

#include <curses.h>
// curses.h first: term.h needs its types.
#include <gtest/gtest.h>
#include <term.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

namespace {

constexpr std::string_view kLineBreak = "\r\r\n";  // "\r\n" through the console's own output processing
constexpr std::size_t kHistoryLines = 10;

std::string* g_expansion = nullptr;

/// A capability as it reaches the terminal.
std::string Expand(const char* name, long parameter) {
  const char* capability = tigetstr(name);
  if (capability == nullptr || reinterpret_cast<std::intptr_t>(capability) == -1) {
    return {};
  }
  std::string expansion;
  g_expansion = &expansion;
  tputs(tparm(capability, parameter), 1, [](int byte) {
    g_expansion->push_back(static_cast<char>(byte));
    return byte;
  });
  g_expansion = nullptr;
  return expansion;
}

}  // namespace

EditorModel::EditorModel(Setup setup) : setup_(std::move(setup)) {
  int verdict = 0;
  EXPECT_EQ(setupterm(setup_.term.c_str(), STDOUT_FILENO, &verdict), OK) << setup_.term;
}

EditorModel::~EditorModel() { del_curterm(cur_term); }

void EditorModel::Start() { ClearAndRestart({}); }

void EditorModel::Press(std::string_view key) {
  if (!Act(key)) {
    SendCapability("bel", 0);
  }
  if (end_ == End::kNone) {
    Redisplay();
  }
}

void EditorModel::GoOn() {
  Send(kLineBreak);
  expected_.screen.clear();
  expected_.new_line = true;
  if (end_ == End::kTab) {
    line_.pop_back();
  } else if (end_ == End::kHelp) {
    line_.resize(line_.find('?'));
  } else {
    line_.clear();
  }
  ClearAndRestart(line_);
}

EditorModel::Expected EditorModel::TakeExpected() { return std::exchange(expected_, {}); }

std::string EditorModel::ScreenRow(std::uint64_t row) const {
  const std::string all = setup_.prompt + (setup_.mode == 2 ? std::string(text_.size(), '*') : text_);
  const std::size_t width = setup_.width == 0 ? all.size() + 1 : setup_.width;
  std::string text = row * width < all.size() ? all.substr(row * width, width) : std::string();
  text.resize(text.find_last_not_of(' ') + 1);
  return text;
}

std::uint64_t EditorModel::CursorRow() const { return wrap_pending_ ? RowOf(0) - 1 : RowOf(cursor_); }

std::uint64_t EditorModel::CursorColumn() const { return wrap_pending_ ? setup_.width - 1 : ColumnOf(cursor_); }

bool EditorModel::Act(std::string_view key) {
  const bool command = setup_.mode == 0;
  if (key[0] == '\033') {
    if (key == "\033[A" || key == "\033[B") {
      return !command || (key == "\033[A" ? Older() : Newer());
    }
    return (key == "\033[C" && Right()) || (key == "\033[D" && Left()) || (key == "\033[3~" && Delete());
  }
  switch (const char byte = key[0]; byte) {
    case 1:
      cursor_ = 0;
      return true;
    case 2:
      return Left();
    case 3:
      if (!command) {
        EndWith(End::kCtrlC, "\003");
      }
      return true;
    case 4:
      return Delete();
    case 5:
      cursor_ = text_.size();
      return true;
    case 6:
      return Right();
    case 8:
    case 127:
      return Left() && Delete();
    case 9:
      if (command) {
        const std::size_t cut = cursor_;
        MoveToEnd();
        EndWith(End::kTab, text_.substr(0, cut) + "\t");
      }
      return true;
    case 10:
    case 13:
      if (command) {
        Remember();
        MoveToEnd();
      }
      EndWith(End::kEnter, command ? text_ + "\n" : text_);
      return true;
    case 26:
      if (command) {
        EndWith(End::kCtrlZ, "\032");
      }
      return true;
    case '?':
      if (!Insert(byte)) {
        return false;
      }
      if (command) {
        Redisplay();
        EndWith(End::kHelp, text_);
      }
      return true;
    default:
      return (byte >= 0 && byte < ' ') || Insert(byte);
  }
}

bool EditorModel::Insert(char byte) {
  if (text_.size() == setup_.max) {
    SendCapability("bel", 0);
    return false;
  }
  text_.insert(cursor_++, 1, byte);
  return true;
}

bool EditorModel::Delete() {
  if (cursor_ == text_.size()) {
    return false;
  }
  text_.erase(cursor_, 1);
  return true;
}

bool EditorModel::Left() {
  if (cursor_ == 0) {
    return false;
  }
  --cursor_;
  return true;
}

bool EditorModel::Right() {
  if (cursor_ == text_.size()) {
    return false;
  }
  ++cursor_;
  return true;
}

bool EditorModel::Older() {
  const std::size_t newer = walk_ == kNotWalking ? history_.size() : walk_;
  if (newer == 0) {
    return false;
  }
  walk_ = newer - 1;
  Recall(history_[walk_]);
  return true;
}

bool EditorModel::Newer() {
  if (walk_ == kNotWalking) {
    return false;
  }
  if (walk_ + 1 < history_.size()) {
    Recall(history_[++walk_]);
  } else {
    walk_ = kNotWalking;
    Recall({});
  }
  return true;
}

void EditorModel::Recall(std::string text) {
  text_ = std::move(text);
  cursor_ = text_.size();
}

void EditorModel::Remember() {
  walk_ = kNotWalking;
  const std::size_t first = text_.find_first_not_of(' ');
  if (first == std::string::npos || text_[first] == '!' || text_[first] == '#' ||
      (!history_.empty() && history_.back() == text_)) {
    return;
  }
  if (history_.size() == kHistoryLines) {
    history_.pop_front();
  }
  history_.push_back(text_);
}

void EditorModel::EndWith(End end, std::string line) {
  end_ = end;
  line_ = std::move(line);
}

void EditorModel::MoveToEnd() {
  if (!text_.empty()) {
    Move(cursor_, text_.size());
  }
}

void EditorModel::Redisplay() {
  const std::string_view text = text_;
  if (text.size() > shown_.size() && text.starts_with(shown_)) {
    Move(shown_cursor_, shown_.size());
    WriteText(text.substr(shown_.size()), shown_.size());
    Move(text.size(), cursor_);
  } else if (text.size() < shown_.size() && shown_.starts_with(text)) {
    Move(shown_cursor_, text.size());
    SendCapability("ed", 0);
    Move(text.size(), cursor_);
  } else if (text == shown_) {
    Move(shown_cursor_, cursor_);
  } else {
    Move(shown_cursor_, 0);
    SendCapability("ed", 0);
    WriteText(text, 0);
    Move(text.size(), cursor_);
  }
  shown_ = text_;
  shown_cursor_ = cursor_;
}

void EditorModel::Move(std::uint64_t from, std::uint64_t to) {
  if (from == to) {
    return;
  }
  if (RowOf(from) != RowOf(to)) {
    const bool up = RowOf(from) > RowOf(to);
    SendCapability(up ? "cuu" : "cud", up ? RowOf(from) - RowOf(to) : RowOf(to) - RowOf(from));
    if (setup_.term == "linux") {
      SendCapability("cub", setup_.width);
      // The one thing that such a terminal does not do as asked: it takes a move by 0 columns as one by 1, and
      // the cursor is then a column off until the next vertical move. The bytes are meant that way; what they mean
      // for the rest of the line is checked as if the terminal had stayed in column 0.
      std::string screen = expected_.screen;
      SendCapability("cuf", ColumnOf(to));
      if (ColumnOf(to) == 0) {
        expected_.screen = std::move(screen);
      }
      return;
    }
  }
  if (ColumnOf(from) > ColumnOf(to)) {
    SendCapability("cub", ColumnOf(from) - ColumnOf(to));
  } else if (ColumnOf(from) < ColumnOf(to)) {
    SendCapability("cuf", ColumnOf(to) - ColumnOf(from));
  }
}

void EditorModel::WriteText(std::string_view text, std::uint64_t position) {
  for (const char byte : text) {
    Send(setup_.mode == 2 ? std::string_view("*") : std::string_view(&byte, 1));
    ++position;
    if (setup_.width != 0 && ColumnOf(position) == 0) {
      Send(kLineBreak);
    }
  }
  wrap_pending_ = false;
}

void EditorModel::ClearAndRestart(std::string text) {
  end_ = End::kNone;
  text_ = std::move(text);
  cursor_ = text_.size();
  shown_.clear();
  shown_cursor_ = 0;
  Send(setup_.prompt);
  wrap_pending_ = !setup_.prompt.empty() && setup_.width != 0 && ColumnOf(0) == 0;
  Redisplay();
}

void EditorModel::Send(std::string_view bytes) {
  expected_.bytes += bytes;
  expected_.screen += bytes;
}

void EditorModel::SendCapability(const char* name, std::uint64_t count) {
  const std::string counted = Expand(name, static_cast<long>(count));
  Send(counted);
  if (counted.empty()) {
    const std::string step = Expand((std::string(name) + "1").c_str(), 0);
    for (std::uint64_t i = 0; i < count; ++i) {
      Send(step);
    }
  }
}

std::uint64_t EditorModel::RowOf(std::uint64_t position) const {
  return setup_.width == 0 ? 0 : (position + setup_.prompt.size()) / setup_.width;
}

std::uint64_t EditorModel::ColumnOf(std::uint64_t position) const {
  const std::uint64_t offset = position + setup_.prompt.size();
  return setup_.width == 0 ? offset : offset % setup_.width;
}
