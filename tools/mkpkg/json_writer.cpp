#include "tools/mkpkg/json_writer.h"

#include <cstdio>

namespace mkpkg {
namespace {

/// @return the length of the UTF-8 character that a text begins with; 0 when it begins with none.
std::size_t CharacterLength(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text[0]);
  if (lead < 0x80) return 1;
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || text.size() < length) return 0;
  for (const char next : text.substr(1, length - 1))
    if ((static_cast<unsigned char>(next) & 0xC0) != 0x80) return 0;
  // Overlong forms, surrogates and what lies beyond Unicode.
  const auto second = static_cast<unsigned char>(text[1]);
  const bool outside = (lead == 0xE0 && second < 0xA0) || (lead == 0xED && second > 0x9F) ||
                       (lead == 0xF0 && second < 0x90) || (lead == 0xF4 && second > 0x8F);
  return outside ? 0 : length;
}

}  // namespace

void JsonWriter::Text(std::string_view key, std::string_view value) {
  Key(key);
  Quote(value);
}

void JsonWriter::Texts(std::string_view key, const std::vector<std::string>& values) {
  BeginArray(key);
  for (const std::string& value : values) Text("", value);
  EndArray();
}

void JsonWriter::Number(std::string_view key, std::uint64_t value) {
  Key(key);
  text_ += std::to_string(value);
}

void JsonWriter::Flag(std::string_view key, bool value) {
  Key(key);
  text_ += value ? "true" : "false";
}

void JsonWriter::Begin(std::string_view key, char bracket) {
  if (!text_.empty()) Key(key);
  text_ += bracket;
  ++depth_;
  first_ = true;
}

void JsonWriter::End(char bracket) {
  --depth_;
  if (!first_) text_.append("\n").append(2 * depth_, ' ');
  text_ += bracket;
  first_ = false;
}

void JsonWriter::Key(std::string_view key) {
  if (!first_) text_ += ',';
  first_ = false;
  text_.append("\n").append(2 * depth_, ' ');
  if (key.empty()) return;
  Quote(key);
  text_ += ": ";
}

void JsonWriter::Quote(std::string_view text) {
  text_ += '"';
  while (!text.empty()) {
    const std::size_t length = CharacterLength(text);
    const auto byte = static_cast<unsigned char>(text[0]);
    if (length == 0) {
      text_ += "\\ufffd";
    } else if (byte == '"' || byte == '\\') {
      text_.append("\\").append(1, text[0]);
    } else if (byte < 0x20) {
      char escape[sizeof("\\u0000")];
      (void)std::snprintf(escape, sizeof(escape), "\\u%04x", static_cast<unsigned>(byte));
      text_ += escape;
    } else {
      text_.append(text.substr(0, length));
    }
    text.remove_prefix(length == 0 ? 1 : length);
  }
  text_ += '"';
}

}  // namespace mkpkg
