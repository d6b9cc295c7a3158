#include <fnmatch.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <vector>

#include "tests/support/console.h"

namespace {

namespace fs = std::filesystem;

/// The sessions of a document that are played, one behind the other: the blocks ```console, and the blocks ```sh, of
/// which every line is typed at the prompt of the host and what is printed is nobody's affair.
std::vector<std::string> SessionsOf(const std::string& document) {
  const std::regex begins_with_prompt(R"([\s>*-]*(\$ |<boot>|\[boot|<Tessaro>).*)");
  std::ifstream file(std::string(ESH_SOURCES) + "/" + document);
  std::vector<std::string> lines;
  std::string block;  // what the line lies in
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with("```")) {
      if (line == "```sh") lines.emplace_back("$ set -e");  // where a line fails, no prompt follows
      if (block == "```sh") lines.emplace_back("$ set +e");
      block = block.empty() ? line : "";
    } else if (block == "```console") {
      lines.push_back(line);
    } else if (block == "```sh") {
      lines.push_back("$ " + line);
      lines.emplace_back("...");
    } else {
      EXPECT_TRUE(block == "```console not played" || !std::regex_match(line, begins_with_prompt)) << line;
    }
  }
  return lines;
}

/// What is the same on all days and machines: no dates, times and counts, and no IPv6 addresses, which the kernel gives
/// in its own time and order, nor the bar that some releases' tftp draws again and again in one line. Blanks at the end
/// of a line do not show, nor does a shell's question where the cursor is.
std::string Lasting(const std::string& text) {
  const std::regex gone("[ \r]+(?=\n)|\x1b\\[6n|Inet6 Address is [^\n]*\n|[^\n]*% \\|[^\n]* ETA[ \r]*\n");
  const std::regex varies(R"( *[\d-]+  [A-Z][a-z]{2} \d\d \d{4} \d\d:\d\d:\d\d|[\d./]+ ms|\d+(?= KB free)|)"
                          R"((In|Out)put:\d+| bytes:\d+|uptime is [^\n]*)");
  return std::regex_replace(std::regex_replace(text, gone, ""), varies, "#");
}

/// @return whether what was printed is what the document shows, where a line "..." stands for any lines.
bool Fits(const std::string& shown, const std::string& printed) {
  const std::string literally = std::regex_replace(shown, std::regex(R"([*?+@!\[\\])"), "\\$&");
  const std::string pattern = std::regex_replace(literally, std::regex("\n\\.\\.\\.(?=\n)"), "?(\n*)");
  return fnmatch(pattern.c_str(), printed.c_str(), FNM_EXTMATCH) == 0;
}

/// The keys that a text behind a prompt stands for: with Enter, unless it ends in "<TAB>", "<Ctrl+Z>" or the like, or
/// in "?" on the device.
std::string KeysOf(const std::string& prompt, const std::string& text) {
  std::smatch parts;
  if (prompt == "password:") return "harbour\r";  // it is shown as stars
  if (std::regex_match(text, parts, std::regex(R"((.*)<(TAB|Ctrl\+(.))>)")))
    return parts[1].str() + (parts[3].matched ? static_cast<char>(*parts[3].first & 0x1f) : '\t');
  return prompt != "$ " && text.ends_with('?') ? text : text + "\r";
}

/// A newcomer with a clone of the project, who types what its documents show.
struct Documents : testing::Test {
  void SetUp() override {
    std::string name = "/tmp/clone-XXXXXX";
    ASSERT_NE(mkdtemp(name.data()), nullptr);
    clone_ = name;
    fs::create_directory(clone_ / "build");
    fs::create_symlink(ESH_BUILD, clone_ / "build/release");
    fs::create_symlink(ESH_SOURCES "/build/arm64", clone_ / "build/arm64");
    for (const char* folder : {"cmake", "device", "image"})
      fs::create_symlink(fs::path(ESH_SOURCES) / folder, clone_ / folder);
    std::ofstream(clone_ / "run") << "#!/bin/sh\necho 'Building ...'\nexec " ESH_DEVICE_PROGRAM " \"$@\"\n";
    fs::permissions(clone_ / "run", fs::perms::owner_all);
  }
  void TearDown() override { fs::remove_all(clone_); }

  void Play(const std::string& document) {
    const std::regex with_keys(
        R"((\$ |/ # |<boot>|\[boot[^\]]*\]|<Tessaro>|.*\[Y/N\]:|user:|password:|login as:)(.*))");
    Console console([this] {
      for (const char* variable : {"PS1", "PS2"}) setenv(variable, "$ ", 1);
      unsetenv("ENV");
      if (chdir(clone_.c_str()) == 0) execl("/bin/sh", "sh", "-i", nullptr);
    });
    std::string shown;   // since keys were typed
    std::string before;  // what the device itself puts behind its next prompt
    bool is_completed = false;
    for (const std::string& line : SessionsOf(document)) {
      std::smatch parts;
      if (!std::regex_match(line, parts, with_keys)) {
        shown += line + "\n";
        continue;
      }
      const std::string prompt = parts[1];
      const std::string text = parts[2];
      if (is_completed) before = text;
      ASSERT_TRUE(text.starts_with(before)) << line;
      shown += prompt + before;
      const std::string printed = console.Expect(prompt + before);
      ASSERT_TRUE(Fits(Lasting(shown), Lasting(printed))) << "shown:\n" << shown << "\nprinted:\n" << printed;
      const std::string typed = text.substr(before.size());
      console.Type(KeysOf(prompt, typed));
      shown = std::regex_replace(typed, std::regex("<.*>$"), "") + "\n";
      is_completed = typed.ends_with("<TAB>");
      before = typed.ends_with('?') ? text.substr(0, text.size() - 1) : "";
    }
    EXPECT_EQ(std::count(shown.begin(), shown.end(), '\n'), 1) << "not looked at, for no prompt follows:\n" << shown;
  }

  fs::path clone_;
};

struct NativeDocuments : Documents {};
struct Arm64Documents : Documents {};

TEST_F(NativeDocuments, HelpTextsAreAsEver) { Play("tests/device/help.md"); }
TEST_F(NativeDocuments, ReadmeIsTrue) { Play("README.md"); }
TEST_F(NativeDocuments, OperatorGuideIsTrue) { Play("docs/operator-guide.md"); }
TEST_F(NativeDocuments, MakingPackagesIsTrue) { Play("docs/making-packages.md"); }
TEST_F(Arm64Documents, BootImageIsTrue) { Play("docs/boot-image.md"); }

}  // namespace
