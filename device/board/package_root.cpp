#include "device/board/package_root.h"

#include <cstdlib>

namespace device {

std::string PackageRoot(const std::string& name) {
  const std::string place = "/esh/" + name + "-root";
  const char* cache = std::getenv("XDG_CACHE_HOME");
  if (cache != nullptr && *cache != '\0') return cache + place;
  const char* home = std::getenv("HOME");
  return (home == nullptr ? "/root" : home) + ("/.cache" + place);
}

}  // namespace device
