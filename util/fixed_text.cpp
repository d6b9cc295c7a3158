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
  Count(static_cast<std::size_t>(std::vsnprintf(buffer_ + length_, room_ - length_, format, arguments)));
  va_end(arguments);
}

void TextBuilder::AppendText(std::string_view text) {
  CopyBounded(buffer_ + length_, room_ - length_, text);
  Count(text.size());
}

void TextBuilder::AppendRepeated(char character, std::size_t count) {
  std::memset(buffer_ + length_, character, std::min(count, FreeRoom()));
  Count(count);
}

void TextBuilder::CutTo(std::size_t length) {
  length_ = length;
  buffer_[length_] = '\0';
  truncated_ = false;
}

void TextBuilder::Count(std::size_t wanted) {
  truncated_ = truncated_ || wanted > FreeRoom();
  length_ += std::min(wanted, FreeRoom());
  buffer_[length_] = '\0';
}
