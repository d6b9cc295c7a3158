#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace mkpkg {

/// Writes a JSON text (RFC 8259), indented, member by member. Bytes that are no UTF-8 are shown as U+FFFD.
class JsonWriter {
 public:
  /// Values stand in an object with their key, in an array with an empty one.
  void BeginObject(std::string_view key = {}) { Begin(key, '{'); }
  /// Every Begin has its End.
  void EndObject() { End('}'); }
  /// An array is always a member.
  void BeginArray(std::string_view key) { Begin(key, '['); }
  /// Ends what BeginArray began.
  void EndArray() { End(']'); }
  /// A string; it need not be escaped.
  void Text(std::string_view key, std::string_view value);
  /// A number in decimal. Above 2^53 not every reader keeps it exact.
  void Number(std::string_view key, std::uint64_t value);
  /// An array of strings.
  void Texts(std::string_view key, const std::vector<std::string>& values);
  /// true or false.
  void Flag(std::string_view key, bool value);

  /// The text so far, with a line end.
  [[nodiscard]] std::string Written() const { return text_ + "\n"; }

 private:
  void Begin(std::string_view key, char bracket);
  void End(char bracket);
  void Key(std::string_view key);
  void Quote(std::string_view text);

  std::string text_;
  std::size_t depth_ = 0;
  bool first_ = true;
};

}  // namespace mkpkg
