#include "device/board/host_program.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <sstream>

#include "util/unique_handle.h"

namespace device {
namespace {

constexpr char kSystemDirectories[] = "/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin";

[[noreturn]] void ExecuteWithOutput(std::vector<char*> arguments, int output) {
  dup2(output, STDOUT_FILENO);
  const UniqueFd null(open("/dev/null", O_RDWR | O_CLOEXEC));
  dup2(null.Get(), STDIN_FILENO);
  dup2(null.Get(), STDERR_FILENO);
  execvp(arguments.front(), arguments.data());
  _exit(1);
}

}  // namespace

std::string ReadToEnd(int descriptor) {
  std::string text;
  std::array<char, 4096> block{};
  ssize_t length = 0;
  while ((length = read(descriptor, block.data(), block.size())) > 0 || (length < 0 && errno == EINTR))
    if (length > 0) text.append(block.data(), static_cast<std::size_t>(length));
  return text;
}

std::optional<std::string> OutputOf(const std::vector<std::string>& words) {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) return std::nullopt;
  const UniqueFd reading(ends[0]);
  UniqueFd writing(ends[1]);
  std::vector<char*> arguments;
  arguments.reserve(words.size() + 1);
  for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);

  const pid_t child = fork();
  if (child == 0) ExecuteWithOutput(arguments, writing.Get());
  if (child < 0) return std::nullopt;
  writing.Reset();
  std::string output = ReadToEnd(reading.Get());
  int status = 0;
  while (waitpid(child, &status, 0) < 0)
    if (errno != EINTR) return std::nullopt;
  if (status != 0) return std::nullopt;
  return output;
}

std::string FindProgram(const std::string& name) {
  const char* search_path = std::getenv("PATH");
  std::istringstream directories(std::string(search_path == nullptr ? "" : search_path) + ":" + kSystemDirectories);
  for (std::string path; std::getline(directories, path, ':');) {
    if (path.empty()) continue;
    path.append("/").append(name);
    if (access(path.c_str(), X_OK) == 0) return path;
  }
  return "";
}

}  // namespace device
