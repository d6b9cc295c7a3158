#include "tools/mkpkg/progress.h"

#include <unistd.h>

#include <cstdio>
#include <utility>

namespace mkpkg {
namespace {

constexpr std::uint64_t kLong = 4 << 20;  // what is shorter is over before anybody could read the line

}  // namespace

Progress::Progress(std::string work, std::uint64_t total)
    : work_(std::move(work)), total_(total), visible_(total >= kLong && isatty(STDERR_FILENO) != 0) {
  if (visible_) (void)std::fprintf(stderr, "\r%s ...   0 %%", work_.c_str());
}

Progress::~Progress() {
  if (visible_) (void)std::fprintf(stderr, "\r%*s\r", static_cast<int>(work_.size() + 10), "");
}

void Progress::Advance(std::uint64_t bytes) {
  done_ += bytes;
  const auto percent = static_cast<unsigned>(done_ >= total_ ? 100 : done_ * 100 / total_);
  if (!visible_ || percent == shown_) return;
  shown_ = percent;
  (void)std::fprintf(stderr, "\r%s ... %3u %%", work_.c_str(), percent);
}

}  // namespace mkpkg
