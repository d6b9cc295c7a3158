#include <cstring>

/// A library for 7z as bad as one can be: it writes far more than it was given room for.
extern "C" unsigned deCompress7z(void* unpacked, const void* /*packed*/) {
  return std::memset(unpacked, 'x', 1 << 30) == unpacked;
}
