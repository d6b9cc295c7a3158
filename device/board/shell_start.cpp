#include "device/board/shell_start.h"

namespace device {

std::vector<std::string> ShellWords(const BootOptions& options) {
  std::vector<std::string> words{kShellPath};
  words.insert(words.end(), options.arguments.begin(), options.arguments.end());
  return words;
}

std::vector<std::string> ShellEnvironment(const BootOptions& options) {
  std::vector<std::string> environment = CommandEnvironment();
  if (options.term) environment.push_back("TERM=" + *options.term);
  environment.insert(environment.end(), options.environment.begin(), options.environment.end());
  return environment;
}

std::vector<std::string> CommandEnvironment() { return {"PATH=/bin:/sbin", "HOME=/root", "USER=root"}; }

}  // namespace device
