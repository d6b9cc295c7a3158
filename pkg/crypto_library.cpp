#include "pkg/crypto_library.h"

#include <dlfcn.h>

namespace {

static_assert(OPENSSL_VERSION_MAJOR == 3);
constexpr char kCryptoLibrary[] = "libcrypto.so.3";

/// Stays loaded: what it was asked for lives on in package readers. @return false when something is missing.
bool Load(CryptoLibrary& crypto) {
  void* library = dlopen(kCryptoLibrary, RTLD_NOW);
  if (library == nullptr) {
    return false;
  }
#define ESH_CRYPTO_LOOK_UP(name)                                                \
  crypto.name = reinterpret_cast<decltype(crypto.name)>(dlsym(library, #name)); \
  if (crypto.name == nullptr) {                                                 \
    return false;                                                               \
  }
  ESH_CRYPTO_FUNCTIONS(ESH_CRYPTO_LOOK_UP)
#undef ESH_CRYPTO_LOOK_UP
  // What decides over a package is built in: no file of the device may put other algorithms in its place.
  return crypto.OPENSSL_init_crypto(OPENSSL_INIT_NO_LOAD_CONFIG, nullptr) == 1;
}

}  // namespace

const CryptoLibrary* Crypto() {
  static CryptoLibrary crypto;
  static const bool loaded = Load(crypto);
  return loaded ? &crypto : nullptr;
}
