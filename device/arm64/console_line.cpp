#include "device/arm64/console_line.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace device {
namespace {

constexpr std::size_t kMaxPrinted = 4194304;  // then the machine waits, as for a terminal that holds its line
constexpr std::size_t kMaxTyped = 4096;
constexpr std::size_t kScreen = 2000;

bool Read(int descriptor, std::string& text) {
  std::array<char, 4096> block{};
  const ssize_t length = read(descriptor, block.data(), block.size());
  if (length > 0) text.append(block.data(), static_cast<std::size_t>(length));
  return length > 0;
}

void Write(int descriptor, std::string& text) {
  if (text.empty()) return;
  const ssize_t written = write(descriptor, text.data(), text.size());
  if (written > 0) text.erase(0, static_cast<std::size_t>(written));
}

}  // namespace

std::string ConsoleLine::Open(UniqueFd serial) {
  serial_ = std::move(serial);
  (void)fcntl(serial_.Get(), F_SETFL, O_NONBLOCK);
  operator_end_.Reset(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK));
  if (!operator_end_ || unlockpt(operator_end_.Get()) != 0)
    return std::string("cannot open a pseudo terminal for the console: ") + std::strerror(errno);
  terminal_.Reset(ioctl(operator_end_.Get(), TIOCGPTPEER, O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK));
  termios modes{};
  if (!terminal_ || tcgetattr(terminal_.Get(), &modes) != 0) return "cannot open the console's near end";
  cfmakeraw(&modes);
  return tcsetattr(terminal_.Get(), TCSANOW, &modes) == 0 ? "" : "cannot make the console raw";
}

void ConsoleLine::Watch(std::vector<pollfd>& waiting) const {
  const auto events = [](bool reads, bool writes) {
    return static_cast<short>((reads ? POLLIN : 0) | (writes ? POLLOUT : 0));
  };
  waiting.push_back({serial_.Get(), events(printed_.size() < kMaxPrinted, !typed_.empty()), 0});
  waiting.push_back({terminal_.Get(), events(typed_.size() < kMaxTyped, !printed_.empty()), 0});
}

void ConsoleLine::Carry() {
  (void)TakePrinted();
  if (typed_.size() < kMaxTyped) (void)Read(terminal_.Get(), typed_);
  Write(terminal_.Get(), printed_);
  Write(serial_.Get(), typed_);
}

void ConsoleLine::CarryRest(int milliseconds) {
  while (TakePrinted()) {
  }
  Write(terminal_.Get(), printed_);
  while (!printed_.empty()) {
    pollfd waiting{terminal_.Get(), POLLOUT, 0};
    if (poll(&waiting, 1, milliseconds) <= 0 || (waiting.revents & POLLHUP) != 0) return;
    Write(terminal_.Get(), printed_);
  }
}

bool ConsoleLine::TakePrinted() {
  const std::size_t before = printed_.size();
  if (before >= kMaxPrinted || !Read(serial_.Get(), printed_)) return false;
  last_words_.append(printed_, before);
  if (last_words_.size() > kScreen) last_words_.erase(0, last_words_.size() - kScreen);
  return true;
}

}  // namespace device
