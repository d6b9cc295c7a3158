#include "fs/file_help.h"

#include <sys/stat.h>

#include <filesystem>
#include <set>
#include <string>
#include <utility>

#include "term/help/help_list.h"
#include "tests/support/private_root.h"
#include "util/result.h"
#include "util/vector.h"

namespace {

namespace fs = std::filesystem;

constexpr auto kAny = FS_HELP_FILE_OR_DIRECTORY;

/// Two media and one that was taken out. The working directory is flash:, which holds a bit of everything.
struct FileHelp : PrivateRootTest {
  void SetUp() override {
    AddMedium("flash:");
    for (const char* directory : {"cfa0:", "slot0#dir:", "flash:/logs/old"})
      fs::create_directories(std::string("/mnt/") + directory);
    for (const char* file : {"plain", "flash:/logs/diag.log", "flash:/logs/.old", "flash:/Log.txt", "flash:/.logrc",
                             "flash:/lo:x", "flash:/l*"})
      WriteFile(std::string("/mnt/") + file, "");
    const std::pair<const char*, const char*> links[] = {
        {"SLOT0#cfa0:", "/mnt/cfa0:"},  // however it is spelled
        {"slot0#usba0:", "/mnt/usba0:"}, {".slot", "/mnt/cfa0:"},       {"flash:/lnkdir", "logs"},
        {"slot0#flag:", "/mnt/cfa0:"},   {"flash:/lnkfile", "Log.txt"}, {"flash:/lnkgone", "gone"},
    };
    for (const auto& [link, target] : links) fs::create_symlink(target, std::string("/mnt/") + link);
    ASSERT_EQ(mkfifo("/mnt/flash:/lpipe", 0600), 0);
    fs::current_path("/mnt/flash:");
  }

  using Lines = std::multiset<std::string>;

  /// The lines that are offered, as "keyword|description", or as the keyword alone where both are the same.
  static Lines Offers(const std::string& word, std::uint32_t kind, FS_HELP_FILTER_F filter = nullptr) {
    const UniqueHelpList list(VEC_Alloc(8));
    EXPECT_EQ(FS_HelpBaseEx(word.c_str(), kind, filter, list.get()), 0U);
    Lines lines;
    ForEachSlot<ESH_HELP_INFO_S>(*list, [&](std::uint64_t, const ESH_HELP_INFO_S& line) {
      const std::string keyword = line.szKeyWord;
      lines.insert(keyword == line.szHelp ? keyword : keyword + "|" + line.szHelp);
    });
    return lines;
  }
};

TEST_F(FileHelp, OffersMediaAndWhatContinuesTheWord) {
  const std::pair<std::string, Lines> cases[] = {
      {"?", {"flash:|Device name", "flag:|Device name", "cfa0:|Device name"}},
      {"fl", {"flash:/|Device name", "flag:/|Device name"}},
      {"flash:", {"flash:/|Device name"}},
      {"l", {"logs/", "Log.txt", "lnkdir/", "lnkfile"}},
      {"flash:/", {"flash:/logs/", "flash:/Log.txt", "flash:/lnkdir/", "flash:/lnkfile"}},
      {"lnkdir/d", {"lnkdir/diag.log"}},
      {"./logs/../logs/d", {"./logs/../logs/diag.log"}},
      {".logrc", {".logrc"}},  // typed in full it is no secret
      {std::string(4097, 'l'), {}},
  };
  for (const auto& [word, lines] : cases) EXPECT_EQ(Offers(word, kAny), lines) << word;
  for (const char* word : {"us", "logs/x", "gone/l", ".l", "lnkgone", "lpipe", "/mnt/flash:/", "/", "flash:/../",
                           "flash:/l*", "cfa0:/", "usba0:/"})
    EXPECT_EQ(Offers(word, kAny), Lines{}) << word;
}

TEST_F(FileHelp, KindDecidesOnFilesAndTheGenericLine) {
  const Lines both = {"logs/", "Log.txt"};
  const Lines directory = {"logs/"};
  const Lines destination = {"logs/", "Log.txt", "STRING"};
  const Lines new_directory = {"logs/", "STRING|[drive][path]"};
  const Lines new_file = {"logs/", "Log.txt", "STRING|[drive][path][file name]"};
  const Lines by_kind[] = {both, destination, directory, new_directory, both, new_file, directory, both, both};
  for (std::uint32_t kind = 0; kind <= FS_HELP_LAST; ++kind) EXPECT_EQ(Offers("lo", kind), by_kind[kind]) << kind;
  EXPECT_EQ(FS_HelpBaseEx("lo", FS_HELP_LAST + 1, nullptr, nullptr), ESH_ERR_FAIL);
  for (const char* word : {"flash:/..", "/x", "flash:/l*"})
    EXPECT_EQ(Offers(word, FS_HELP_DESTINATION), Lines{}) << word << " can become no name";
  EXPECT_EQ(Offers("flash:/log", FS_HELP_PACKAGE), (Lines{"flash:/logs/", "flash:/Log.txt"}));
  EXPECT_EQ(Offers("flash:/logs/", FS_HELP_PACKAGE), Lines{}) << "packages lie in a medium's root";
}

TEST_F(FileHelp, LeavesOutWhatTheFilterRefuses) {
  const FS_HELP_FILTER_F only_logs = [](const char* full) -> std::uint32_t {
    return std::string(full) == "/mnt/flash:/logs" ? 0 : 1;
  };
  EXPECT_EQ(Offers("flash:/", kAny, only_logs), Lines{"flash:/logs/"});
  EXPECT_EQ(Offers("Log.txt", kAny, only_logs), Lines{});
  EXPECT_EQ(Offers("?", kAny, only_logs).size(), 3U) << "media are not filtered";
}

}  // namespace
