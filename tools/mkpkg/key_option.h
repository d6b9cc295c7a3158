#pragma once

#include <string>

#include "tools/mkpkg/arguments.h"
#include "tools/mkpkg/rsa_key.h"

namespace mkpkg {

/// Reads the key of a PEM file, which --passphrase-file may open.
/// @return an empty text, or one line that says why it cannot be used.
[[nodiscard]] std::string ReadKey(const Arguments& arguments, const std::string& path, KeyPart part, UniqueKey& key);

}  // namespace mkpkg
