#include <cstdio>
#include <cstdlib>
#include <new>
#include <string_view>

#include "tools/mkpkg/commands.h"
#include "tools/mkpkg/exit_status.h"
#include "tools/mkpkg/messages.h"

namespace {

using mkpkg::Arguments;
using mkpkg::Command;

constexpr char kHelp[] =
    "usage: mkpkg COMMAND [OPTION]... [OPERAND]...\n"
    "Makes, signs and judges the packages that a device loads.\n"
    "\n"
    "  build    make a package from a description file\n"
    "  sign     sign a package, or attach a signature that was made elsewhere\n"
    "  key      make a key pair, or the key file of a device\n"
    "  info     show what is in a package\n"
    "  check    tell what a device would say to a package\n"
    "  extract  write the files of a package into a directory\n"
    "\n"
    "\"mkpkg COMMAND --help\" tells more. Exit status: 0 done, 1 a device would refuse the package (check only),\n"
    "2 wrong command line, 3 something to be read is missing or wrong, 4 the result could not be written.\n";

constexpr const Command* kCommands[] = {&mkpkg::kBuildCommand, &mkpkg::kSignCommand,  &mkpkg::kKeyCommand,
                                        &mkpkg::kInfoCommand,  &mkpkg::kCheckCommand, &mkpkg::kExtractCommand};

int Help(const char* text) {
  (void)std::fputs(text, stdout);
  return mkpkg::EndOutput();
}

/// Results are written only when they are complete, so nothing half done is left behind.
[[noreturn]] void OutOfMemory() {
  (void)std::fputs("mkpkg: out of memory\n", stderr);
  std::exit(mkpkg::kBadInput);
}

int Run(const Command& command, std::span<char* const> words) {
  for (const std::string_view word : words)
    if (word == "--help") return Help(command.help);
  Arguments arguments;
  std::string problem = arguments.Parse(words, command.options);
  const std::size_t operands = arguments.Operands().size();
  if (problem.empty() && operands < command.least_operands) problem = "an operand is missing";
  if (problem.empty() && operands > command.most_operands) problem = "there are too many operands";
  if (problem.empty()) return command.run(arguments);
  return mkpkg::Fail(mkpkg::kUsage, problem + "; see \"mkpkg " + command.name + " --help\"");
}

}  // namespace

int main(int argc, char** argv) {
  std::set_new_handler(OutOfMemory);
  const std::span<char* const> words(argv + 1, argv + argc);
  if (words.empty()) return mkpkg::Fail(mkpkg::kUsage, "a command is missing; see \"mkpkg --help\"");
  const std::string_view name = words[0];
  if (name == "--help") return Help(kHelp);
  for (const Command* command : kCommands)
    if (name == command->name) return Run(*command, words.subspan(1));
  return mkpkg::Fail(mkpkg::kUsage, "there is no command \"" + std::string(name) + "\"; see \"mkpkg --help\"");
}
