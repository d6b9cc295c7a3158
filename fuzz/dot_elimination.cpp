#include "fs/names/dot_elimination.h"

#include <string>

#include "fuzz/require.h"
#include "util/result.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string name(reinterpret_cast<const char*>(data), size);
  for (const std::uint32_t floor : {kRootFloor, kMediumFloor}) {
    char output[512];
    if (eliminatePoint(name.c_str(), floor, sizeof(output), output) != kSuccess) continue;
    const std::string result(output);
    Require(!result.empty() && result.size() <= name.size());
    Require((result[0] == '/') == (name[0] == '/'));
    const std::string framed = (result[0] == '/' ? "" : "/") + result + "/";
    Require(framed.find("/../") == std::string::npos && framed.find("/./") == std::string::npos);
    if (name.starts_with("/mnt/flash:/") && floor == kMediumFloor) Require(framed.starts_with("/mnt/flash:/"));
  }
  return 0;
}
