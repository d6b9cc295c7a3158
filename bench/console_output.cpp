#include "bench/console_output.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>

#include "bench/measure.h"

namespace {

constexpr int kPatienceMillis = 20'000;

constexpr int kMomentMillis = 50;

bool HasOutput(const Console& console, int millis) {
  pollfd terminal{.fd = console.ConsoleFd(), .events = POLLIN, .revents = 0};
  return poll(&terminal, 1, millis) == 1;
}

void ReadMore(const Console& console, std::string& output) {
  char bytes[4096];
  Require(HasOutput(console, kPatienceMillis), "a console is silent");
  const ssize_t length = read(console.ConsoleFd(), bytes, sizeof(bytes));
  Require(length > 0, "a console ends");
  output.append(bytes, static_cast<std::size_t>(length));
}

}  // namespace

std::string ReadAnswer(const Console& console) {
  std::string output;
  do ReadMore(console, output);
  while (HasOutput(console, kMomentMillis));
  return output;
}

std::string ReadUntilOneOf(const Console& console, std::initializer_list<std::string_view> marks) {
  std::string output;
  while (std::ranges::none_of(marks, [&](std::string_view mark) { return output.ends_with(mark); }))
    ReadMore(console, output);
  return output;
}

std::string ReadToEnd(const Console& console) {
  std::string output;
  for (;;) {
    char bytes[4096];
    Require(HasOutput(console, kPatienceMillis), "the console is silent");
    const ssize_t length = read(console.ConsoleFd(), bytes, sizeof(bytes));
    if (length <= 0) return output;
    output.append(bytes, static_cast<std::size_t>(length));
  }
}
