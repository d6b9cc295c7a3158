#pragma once

#include <cstddef>
#include <string_view>

/// Copies text into a buffer of fixed size, cutting it there; the result is always terminated.
/// @param dest NULL holds nothing.
/// @param room size of `dest` in bytes; in none not even an empty text fits.
/// @return true when all of it fitted.
bool CopyBounded(char* dest, std::size_t room, std::string_view text);

/// Copies text into a fixed buffer whose size is the array's own.
/// @return true when all of it fitted, false when it was cut.
template <std::size_t kRoom>
bool CopyText(char (&dest)[kRoom], std::string_view text) {
  return CopyBounded(dest, kRoom, text);
}

/// The part of FixedText that does not depend on its size.
class TextBuilder {
 public:
  TextBuilder(const TextBuilder&) = delete;
  TextBuilder& operator=(const TextBuilder&) = delete;

  /// Appends formatted text. What does not fit is cut, and Truncated() says so from then on.
  void Append(const char* format, ...) __attribute__((format(printf, 2, 3)));
  /// Appends text as it is; what does not fit is cut.
  void AppendText(std::string_view text);
  /// Appends one character `count` times, or as often as fits.
  void AppendRepeated(char character, std::size_t count);
  /// Empties the text; nothing counts as cut then.
  void Clear() { CutTo(0); }
  /// Drops what stands behind the first `length` characters, of which there must be so many; nothing counts as cut
  /// then.
  void CutTo(std::size_t length);

  /// Whether anything was cut since the text was emptied or shortened.
  [[nodiscard]] bool Truncated() const { return truncated_; }
  /// In characters, without the terminator.
  [[nodiscard]] std::size_t Length() const { return length_; }
  /// The terminated text, here and below; it lives as long as this object.
  [[nodiscard]] char* Text() { return buffer_; }
  [[nodiscard]] const char* Text() const { return buffer_; }
  [[nodiscard]] std::string_view View() const { return {buffer_, length_}; }

 protected:
  TextBuilder(char* buffer, std::size_t room) : buffer_(buffer), room_(room) {}
  ~TextBuilder() = default;

 private:
  [[nodiscard]] std::size_t FreeRoom() const { return room_ - 1 - length_; }
  /// Takes note of so many more characters, of which those that fit stand there.
  void Count(std::size_t wanted);

  char* buffer_;
  std::size_t room_;
  std::size_t length_ = 0;
  bool truncated_ = false;
};

/// A terminated text of at most kRoom - 1 characters, built piece by piece.
template <std::size_t kRoom>
class FixedText final : public TextBuilder {
 public:
  /// An empty text.
  FixedText() : TextBuilder(storage_, kRoom) { Clear(); }

 private:
  char storage_[kRoom];
};
