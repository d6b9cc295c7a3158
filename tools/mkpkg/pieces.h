#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace mkpkg {

/// Images are larger than what a build machine has to spare, so data go piece by piece wherever they can be large.

/// Takes the next piece. @return an empty text, or one line that says what went wrong, which ends the feed.
using Sink = std::function<std::string(std::string_view piece)>;

/// Gives all of its data to a sink. @return an empty text, or one line that says what went wrong.
using Feed = std::function<std::string(const Sink& sink)>;

/// Data that are fetched piece by piece.
class Pieces {
 public:
  virtual ~Pieces() = default;

  /// @return a piece, valid until the next call; an empty one at the end, and when something went wrong.
  [[nodiscard]] virtual std::string_view Next() = 0;
  /// @return an empty text, or one line that says what went wrong.
  [[nodiscard]] const std::string& Problem() const { return problem_; }

 protected:
  std::string problem_;
};
using UniquePieces = std::unique_ptr<Pieces>;

/// Gives all pieces to a sink.
[[nodiscard]] std::string FeedPieces(Pieces& pieces, const Sink& sink);

/// A part of an open file.
class FilePieces final : public Pieces {
 public:
  /// @param fd     of a regular file; stays the caller's.
  /// @param begin  where the part begins; `length` bytes must be there, or the file is told to have changed.
  FilePieces(int fd, std::uint64_t begin, std::uint64_t length) : fd_(fd), begin_(begin), length_(length) {}

  [[nodiscard]] std::string_view Next() override;
  /// Bytes in all.
  [[nodiscard]] std::uint64_t Length() const { return length_; }
  /// Bytes before the next piece.
  [[nodiscard]] std::uint64_t Place() const { return place_; }
  /// Sets which byte of the part comes next.
  void SetPlace(std::uint64_t place) { place_ = place; }

 private:
  int fd_;
  std::uint64_t begin_;
  std::uint64_t length_;
  std::uint64_t place_ = 0;
  std::vector<char> buffer_;
};

}  // namespace mkpkg
