#pragma once

#include <string>

namespace device {

/// @return the directory, on the host, into which cmake/fetch-NAME.sh unpacks packages; it need not be there.
std::string PackageRoot(const std::string& name);

}  // namespace device
