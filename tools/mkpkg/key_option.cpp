#include "tools/mkpkg/key_option.h"

#include <optional>

#include "tools/mkpkg/files.h"

namespace mkpkg {

std::string ReadKey(const Arguments& arguments, const std::string& path, KeyPart part, UniqueKey& key) {
  std::string pem;
  std::optional<std::string> passphrase;
  if (std::string problem = ReadWholeFile(path, pem); !problem.empty()) return problem;
  if (arguments.Has("passphrase-file")) {
    std::string text;
    if (std::string problem = ReadWholeFile(arguments.Value("passphrase-file"), text); !problem.empty()) return problem;
    passphrase = text.substr(0, text.find('\n'));
  }
  return ParseKey(pem, path, part, passphrase, key);
}

}  // namespace mkpkg
