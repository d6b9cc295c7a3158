#include <algorithm>
#include <string>

#include "fuzz/require.h"
#include "pkg/format/fingerprint_trailer.h"
#include "pkg/format/package_format.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const auto fields = ParseTrailer(text);
  if (fields) {
    Require(std::ranges::count(text, '\n') == 7 && text.find(std::to_string(fields->length)) != std::string::npos);
    Require(!fields->key.empty() && fields->key.find_first_of(" \n") == std::string_view::npos);
  }
  std::uint8_t signature[kHeadSignatureRoom];
  std::uint32_t length = 0;
  if (PKG_GetCSS_Signture(text.c_str(), signature, &length) == 0) Require(length <= sizeof(signature));
  return 0;
}
