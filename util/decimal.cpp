#include "util/decimal.h"

#include <cerrno>
#include <cstdlib>

#include "util/ascii.h"

bool ReadDecimal(const char* text, std::uint64_t& number) {
  if (!IsDigit(*text)) return false;
  char* rest = nullptr;
  errno = 0;
  number = std::strtoul(text, &rest, 10);
  return errno == 0 && *rest == '\0';
}
