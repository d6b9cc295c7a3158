#include "util/fixed_text.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>

bool CopyBounded(char* dest, std::size_t room, std::string_view text) {
  if (dest == nullptr || room == 0) return false;
  const std::size_t copied = std::min(text.size(), room - 1);
  std::memcpy(dest, text.data(), copied);
  dest[copied] = '\0';
  return copied == text.size();
}

void TextBuilder::Append(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  const int wanted = std::vsnprintf(buffer_ + length_, room_ - length_, format, arguments);
  va_end(arguments);
  if (wanted < 0) {
    truncated_ = true;
    return;
  }
  const std::size_t free_room = room_ - 1 - length_;
  truncated_ = truncated_ || static_cast<std::size_t>(wanted) > free_room;
  length_ += std::min(static_cast<std::size_t>(wanted), free_room);
}

void TextBuilder::AppendText(std::string_view text) {
  truncated_ = !CopyBounded(buffer_ + length_, room_ - length_, text) || truncated_;
  length_ += std::min(text.size(), room_ - 1 - length_);
}

void TextBuilder::AppendRepeated(char character, std::size_t count) {
  const std::size_t copied = std::min(count, room_ - 1 - length_);
  std::memset(buffer_ + length_, character, copied);
  length_ += copied;
  buffer_[length_] = '\0';
  truncated_ = truncated_ || copied < count;
}

void TextBuilder::CutTo(std::size_t length) {
  length_ = length;
  buffer_[length_] = '\0';
  truncated_ = false;
}
