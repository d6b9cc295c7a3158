#include <cstdio>
#include <cstdlib>
#include <new>
#include <string_view>
#include <vector>

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
    "\"mkpkg help COMMAND\" tells more, \"mkpkg --version\" the version. With --json every command tells its result "
    "and\n"
    "its warnings as a JSON object on standard output.\n"
    "\n"
    "Exit status: 0 done, 1 a device would refuse the package (check only), 2 wrong command line, 3 something to be\n"
    "read is missing or wrong, 4 the result could not be written.\n";

constexpr const Command* kCommands[] = {&mkpkg::kBuildCommand, &mkpkg::kSignCommand,  &mkpkg::kKeyCommand,
                                        &mkpkg::kInfoCommand,  &mkpkg::kCheckCommand, &mkpkg::kExtractCommand};

int Print(const char* text) {
  (void)std::fputs(text, stdout);
  return mkpkg::EndOutput();
}

/// Results are written only when they are complete, so nothing half done is left behind.
[[noreturn]] void OutOfMemory() {
  (void)std::fputs("mkpkg: out of memory\n", stderr);
  std::exit(mkpkg::kBadInput);
}

bool AsksForHelp(std::string_view word) { return word == "--help" || word == "-h"; }

const Command* Find(std::string_view name) {
  for (const Command* command : kCommands)
    if (name == command->name) return command;
  return nullptr;
}

/// @return what is wrong with the number of operands, or an empty text.
std::string WrongOperands(const Command& command, const std::vector<std::string>& given) {
  std::size_t count = 0;
  while (command.operands[count] != nullptr) ++count;
  if (given.size() < count) return std::string("operand ") + command.operands[given.size()] + " is missing";
  return given.size() > count ? "operand " + given[count] + " is one too many" : "";
}

int Run(const Command& command, std::span<char* const> words) {
  for (const std::string_view word : words)
    if (AsksForHelp(word)) return Print(command.help);
  std::vector<mkpkg::Option> options(command.options.begin(), command.options.end());
  options.push_back(mkpkg::kJson);
  Arguments arguments;
  std::string problem = arguments.Parse(words, options);
  if (problem.empty()) problem = WrongOperands(command, arguments.Operands());
  if (problem.empty()) return command.run(arguments);
  return mkpkg::Fail(mkpkg::kUsage, problem + "; see \"mkpkg " + command.name + " --help\"");
}

int RunNamed(std::string_view name, std::span<char* const> words) {
  const bool is_help = name == "help" && !words.empty();
  const Command* command = Find(is_help ? words[0] : name);
  if (command != nullptr) return is_help ? Print(command->help) : Run(*command, words);
  if (!is_help && (AsksForHelp(name) || name == "help")) return Print(kHelp);
  if (name == "--version") return Print("mkpkg " MKPKG_VERSION "\n");
  return mkpkg::Fail(mkpkg::kUsage,
                     "there is no command \"" + std::string(is_help ? words[0] : name) + "\"; see \"mkpkg --help\"");
}

}  // namespace

int main(int argc, char** argv) {
  std::set_new_handler(OutOfMemory);
  if (argc < 2) return mkpkg::Fail(mkpkg::kUsage, "a command is missing; see \"mkpkg --help\"");
  return RunNamed(argv[1], {argv + 2, argv + argc});
}
