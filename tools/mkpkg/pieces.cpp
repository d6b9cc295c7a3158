#include "tools/mkpkg/pieces.h"

#include <unistd.h>

#include <algorithm>

namespace mkpkg {

constexpr std::uint64_t kPiece = 1 << 16;

std::string FeedPieces(Pieces& pieces, const Sink& sink) {
  for (std::string_view piece = pieces.Next(); !piece.empty(); piece = pieces.Next())
    if (std::string problem = sink(piece); !problem.empty()) return problem;
  return pieces.Problem();
}

std::string_view FilePieces::Next() {
  if (place_ >= length_) return {};
  buffer_.resize(kPiece);
  const auto length = static_cast<std::size_t>(std::min(kPiece, length_ - place_));
  const ssize_t count = pread(fd_, buffer_.data(), length, static_cast<off_t>(begin_ + place_));
  if (count <= 0) {
    problem_ = "the file cannot be read, or became shorter";
    return {};
  }
  place_ += static_cast<std::uint64_t>(count);
  return {buffer_.data(), static_cast<std::size_t>(count)};
}

}  // namespace mkpkg
