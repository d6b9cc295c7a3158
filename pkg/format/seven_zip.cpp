#include "pkg/format/seven_zip.h"

#include <dlfcn.h>

#include <memory>

namespace {

constexpr char kSevenZipLibrary[] = "/lib/libun7z.so";
constexpr char kEntry[] = "deCompress7z";

using DecompressFn = std::uint32_t (*)(void* unpacked, const void* packed);

struct LibraryCloser {
  void operator()(void* library) const { dlclose(library); }
};

}  // namespace

std::uint32_t ESH_deCompress7z(void* unpacked, const void* packed) {
  const std::unique_ptr<void, LibraryCloser> library(dlopen(kSevenZipLibrary, RTLD_NOW));
  if (library == nullptr) return 0;
  const auto decompress = reinterpret_cast<DecompressFn>(dlsym(library.get(), kEntry));
  return decompress == nullptr ? 0 : decompress(unpacked, packed);
}
