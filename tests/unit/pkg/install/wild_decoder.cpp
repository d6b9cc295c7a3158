#include <cstdint>
#include <cstring>

/// A library for 7z as bad as one can be: it writes far more than it was given room for.
extern "C" std::uint32_t deCompress7z(void* unpacked, const void* /*packed*/) {
  std::memset(unpacked, 'x', std::size_t{1} << 30);
  return 1;
}
