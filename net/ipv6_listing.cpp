#include "net/ipv6_listing.h"

#include <arpa/inet.h>

#include <cstddef>
#include <cstdlib>

#include "util/fixed_text.h"

namespace {

constexpr std::size_t kGroups = 8;
constexpr std::size_t kGroupDigits = 4;
constexpr int kHexadecimal = 16;

unsigned ReadHex(const char* digits) { return static_cast<unsigned>(std::strtoul(digits, nullptr, kHexadecimal)); }

/// @param digits all 32 digits of an address, without colons.
bool WriteCanonical(const char (&digits)[kGroups * kGroupDigits + 1], char (&text)[INET6_ADDRSTRLEN]) {
  FixedText<INET6_ADDRSTRLEN> grouped;
  for (std::size_t group = 0; group < kGroups; ++group)
    grouped.Append("%s%.4s", group == 0 ? "" : ":", digits + group * kGroupDigits);
  in6_addr address{};
  return inet_pton(AF_INET6, grouped.Text(), &address) == 1 &&
         inet_ntop(AF_INET6, &address, text, sizeof(text)) != nullptr;
}

}  // namespace

bool ReadIPv6Entry(std::FILE* listing, IPv6Entry& entry) {
  char digits[kGroups * kGroupDigits + 1] = "";
  char prefix_length[3];
  char scope[3];
  // Between them stand the interface's number and the address's flags.
  const int fields =
      std::fscanf(listing, "%32s %*8s %2s %2s %*2s %20s\n", digits, prefix_length, scope, entry.interface);
  if (fields != 4 || !WriteCanonical(digits, entry.address)) return false;
  entry.prefix_length = ReadHex(prefix_length);
  entry.scope = ReadHex(scope);
  return true;
}
