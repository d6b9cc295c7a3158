#include "net/interface_counters.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "util/fixed_text.h"
#include "util/unique_handle.h"

namespace {

constexpr char kCountersFile[] = "/proc/net/dev";
constexpr unsigned kHeadingLines = 2;

/// The numbers behind the colon of an interface's line; NULL when the line is another's.
const char* NumbersOf(std::string_view interface, const char* line) {
  std::string_view rest(line);
  rest.remove_prefix(std::min(rest.find_first_not_of(" \t"), rest.size()));
  if (!rest.starts_with(interface) || rest.substr(interface.size(), 1) != ":") return nullptr;
  return rest.data() + interface.size() + 1;
}

/// A line that ends early leaves the other counters at zero.
void ReadNumbers(const char* text, InterfaceCounters& counters) {
  for (unsigned long long& column : counters.column) {
    char* end = nullptr;
    column = std::strtoull(text, &end, 10);
    text = end;
  }
}

}  // namespace

bool ReadInterfaceCounters(const char* interface, InterfaceCounters& counters) {
  const UniqueFile file(std::fopen(kCountersFile, "re"));
  if (file == nullptr) return false;
  char line[BUFSIZ];
  for (unsigned number = 1; std::fgets(line, sizeof(line), file.get()) != nullptr; ++number) {
    const char* numbers = number > kHeadingLines ? NumbersOf(interface, line) : nullptr;
    if (numbers != nullptr) {
      CopyText(counters.name, interface);
      ReadNumbers(numbers, counters);
      break;
    }
  }
  return true;
}
