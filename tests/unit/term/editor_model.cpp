#include "tests/unit/term/editor_model.h"

#include <map>
#include <utility>

namespace {

constexpr std::size_t kHistoryLines = 10;

}  // namespace

void EditorModel::Start(const std::string& text) {
  end_ = ESH_LINE_END_NONE;
  text_ = text;
  cursor_ = text.size();
  shown_.clear();
  shown_cursor_ = 0;
  output_ += setup_.prompt;
  Redisplay();
}

void EditorModel::Press(std::string_view key) {
  if (!Act(key)) {
    Control("\a");
  }
  if (end_ == ESH_LINE_END_NONE) {
    Redisplay();
  }
}

std::string EditorModel::TakeOutput() { return std::exchange(output_, {}); }

std::string EditorModel::Shown() const {
  return setup_.prompt + (setup_.mode == ESH_LINE_MODE_MASKED ? std::string(text_.size(), '*') : text_);
}

bool EditorModel::Act(std::string_view key) {
  using Model = EditorModel;
  static const std::map<std::string_view, bool (Model::*)()> kActions = {
      {"\001", &Model::Home},      {"\002", &Model::Left},      {"\003", &Model::CtrlC},     {"\004", &Model::Delete},
      {"\005", &Model::End},       {"\006", &Model::Right},     {"\010", &Model::Backspace}, {"\t", &Model::Tab},
      {"\n", &Model::Enter},       {"\r", &Model::Enter},       {"\032", &Model::CtrlZ},     {"?", &Model::Help},
      {"\177", &Model::Backspace}, {"\033[A", &Model::Older},   {"\033[B", &Model::Newer},   {"\033[C", &Model::Right},
      {"\033[D", &Model::Left},    {"\033[3~", &Model::Delete},
  };
  if (const auto found = kActions.find(key); found != kActions.end()) {
    return (this->*found->second)();
  }
  const auto byte = static_cast<unsigned char>(key[0]);
  return byte < ' ' ? byte != '\033' : Insert(key[0]);
}

bool EditorModel::Delete() {
  if (cursor_ == text_.size()) {
    return false;
  }
  text_.erase(cursor_, 1);
  return true;
}

bool EditorModel::Insert(char byte) {
  if (text_.size() == setup_.max) {
    Control("\a");  // and a second one for the refusal
    return false;
  }
  text_.insert(cursor_, 1, byte);
  return Go(cursor_ + 1);
}

bool EditorModel::Enter() {
  if (!InCommandMode()) {
    return EndWith(ESH_LINE_END_ENTER, text_);
  }
  Remember();
  LeaveFromTheEnd();
  return EndWith(ESH_LINE_END_ENTER, text_ + "\n");
}

bool EditorModel::Tab() {
  if (!InCommandMode()) {
    return true;
  }
  LeaveFromTheEnd();
  return EndWith(ESH_LINE_END_TAB, text_.substr(0, cursor_) + "\t");
}

bool EditorModel::Help() {
  if (!Insert('?')) {
    return false;
  }
  if (InCommandMode()) {
    Redisplay();
    EndWith(ESH_LINE_END_HELP, text_);
  }
  return true;
}

bool EditorModel::Older() {
  if (!InCommandMode()) {
    return true;
  }
  return walk_ > 0 && Recall(history_[--walk_]);
}

bool EditorModel::Newer() {
  if (!InCommandMode()) {
    return true;
  }
  if (walk_ == history_.size()) {
    return false;
  }
  ++walk_;
  return Recall(walk_ == history_.size() ? std::string() : history_[walk_]);
}

bool EditorModel::Go(std::size_t cursor) {
  cursor_ = cursor;
  return true;
}

bool EditorModel::Recall(const std::string& text) {
  text_ = text;
  return End();
}

bool EditorModel::EndWith(std::uint32_t end, const std::string& line) {
  end_ = end;
  line_ = line;
  return true;
}

void EditorModel::Remember() {
  const std::size_t first = text_.find_first_not_of(' ');
  const bool remark = first == std::string::npos || text_[first] == '!' || text_[first] == '#';
  if (!remark && (history_.empty() || history_.back() != text_)) {
    history_.push_back(text_);
  }
  if (history_.size() > kHistoryLines) {
    history_.pop_front();
  }
  walk_ = history_.size();
}

void EditorModel::Redisplay() {
  const std::string_view text = text_;
  if (text == shown_) {
    Move(shown_cursor_, cursor_);
  } else if (text.starts_with(shown_)) {
    Move(shown_cursor_, shown_.size());
    WriteText(text.substr(shown_.size()), shown_.size());
    Move(text.size(), cursor_);
  } else if (shown_.starts_with(text)) {
    Move(shown_cursor_, text.size());
    Control("\033[J");
    Move(text.size(), cursor_);
  } else {
    Move(shown_cursor_, 0);
    Control("\033[J");
    WriteText(text, 0);
    Move(text.size(), cursor_);
  }
  shown_ = text_;
  shown_cursor_ = cursor_;
}

void EditorModel::LeaveFromTheEnd() { Move(cursor_, text_.size()); }

void EditorModel::Move(std::uint64_t from, std::uint64_t to) {
  if (from == to) {
    return;
  }
  const std::uint64_t width = setup_.width == 0 ? UINT64_MAX : setup_.width;
  from += setup_.prompt.size();
  to += setup_.prompt.size();
  if (from / width != to / width) {
    from / width > to / width ? Step(from / width - to / width, 'A') : Step(to / width - from / width, 'B');
    if (setup_.term == "linux") {  // which loses the column
      Step(width, 'D');
      Step(to % width, 'C');
      return;
    }
  }
  if (from % width != to % width) {
    from % width > to % width ? Step(from % width - to % width, 'D') : Step(to % width - from % width, 'C');
  }
}

void EditorModel::Step(std::uint64_t count, char direction) {
  if (setup_.term != "esh-steps") {
    Control("\033[" + std::to_string(count) + direction);
    return;
  }
  for (std::uint64_t i = 0; i < count; ++i) {
    Control(direction == 'D' ? "\b" : std::string("\033[") + direction);
  }
}

void EditorModel::WriteText(std::string_view text, std::uint64_t position) {
  for (const char byte : text) {
    output_ += setup_.mode == ESH_LINE_MODE_MASKED ? '*' : byte;
    ++position;
    if (setup_.width != 0 && (position + setup_.prompt.size()) % setup_.width == 0) {
      output_ += "\r\r\n";
    }
  }
}

void EditorModel::Control(std::string_view bytes) {
  if (setup_.term != "esh-still") {
    output_ += bytes;
  }
}
