#include "fs/file_help.h"

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <set>
#include <string>

#include "term/help_list.h"
#include "tests/support/private_root.h"
#include "util/vector.h"

namespace {

namespace fs = std::filesystem;

/// Two media and one that was taken out. The working directory is flash:, which holds a bit of everything.
struct FileHelp : PrivateRootTest {
  void SetUp() override {
    PrivateRootTest::SetUp();
    AddMedium("flash:");
    fs::create_directory("/mnt/cfa0:");
    fs::create_symlink("/mnt/cfa0:", "/mnt/SLOT0#cfa0:");  // however it is spelled
    fs::create_symlink("/mnt/usba0:", "/mnt/slot0#usba0:");
    fs::create_symlink("/mnt/cfa0:", "/mnt/.slot");
    fs::create_directory("/mnt/slot0#dir:");
    WriteFile("/mnt/plain", "");
    WriteFile("/mnt/flash:/logs/diag.log", "");
    WriteFile("/mnt/flash:/logs/old/a", "");
    WriteFile("/mnt/flash:/logs/.old", "");
    WriteFile("/mnt/flash:/Log.txt", "");
    WriteFile("/mnt/flash:/.logrc", "");
    fs::create_symlink("logs", "/mnt/flash:/lnkdir");
    fs::create_symlink("Log.txt", "/mnt/flash:/lnkfile");
    fs::create_symlink("gone", "/mnt/flash:/lnkgone");
    ASSERT_EQ(mkfifo("/mnt/flash:/lpipe", 0600), 0);
    ASSERT_EQ(chdir("/mnt/flash:"), 0);
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

constexpr auto kAny = FS_HELP_FILE_OR_DIRECTORY;

TEST_F(FileHelp, OffersMediaAndWhatContinuesTheWord) {
  struct OfferCase {
    const char* word;
    Lines lines;
  };
  const Lines media = {"flash:|Device name", "cfa0:|Device name"};
  const Lines at_l = {"logs/", "Log.txt", "lnkdir/", "lnkfile"};
  const Lines at_flash_l = {"flash:/logs/", "flash:/Log.txt", "flash:/lnkdir/", "flash:/lnkfile"};
  const OfferCase cases[] = {
      {"?", media},
      {"?fl", media},
      {"fl", {"flash:/|Device name"}},
      {"FLASH", {"flash:/|Device name"}},
      {"flash:", {"flash:/|Device name"}},
      {"c", {"cfa0:/|Device name"}},
      {"l", at_l},
      {"L", at_l},
      {"./l", {"./logs/", "./Log.txt", "./lnkdir/", "./lnkfile"}},
      {"flash:/L", at_flash_l},
      {"flash:/", at_flash_l},
      {"logs", {"logs/"}},
      {"flash:/logs", {"flash:/logs/"}},
      {"Log.txt", {"Log.txt"}},
      {"logs/", {"logs/diag.log", "logs/old/"}},
      {"lnkdir/d", {"lnkdir/diag.log"}},
      {"logs/../logs/d", {"logs/../logs/diag.log"}},
      {".logrc", {".logrc"}},  // typed in full it is no secret
  };
  for (const OfferCase& c : cases) {
    EXPECT_EQ(Offers(c.word, kAny), c.lines) << c.word;
  }
  for (const char* word : {"us", "logs/x", "gone/l", ".l", "lnkgone", "lpipe", "/mnt/flash:/", "/", "flash:/../",
                           "flash:/l*", "cfa0:/", "usba0:/"}) {
    EXPECT_EQ(Offers(word, kAny), Lines{}) << word;
  }
}

TEST_F(FileHelp, KindDecidesOnFilesAndTheGenericLine) {
  const Lines both = {"logs/", "Log.txt"};
  const Lines directory = {"logs/"};
  const auto with = [](Lines lines, const char* line) {
    lines.insert(line);
    return lines;
  };
  const Lines expected[] = {
      both,                                           // 0
      with(both, "STRING"),                           // 1
      directory,                                      // 2
      with(directory, "STRING|[drive][path]"),        // 3
      both,                                           // 4
      with(both, "STRING|[drive][path][file name]"),  // 5
      directory,                                      // 6
      both,                                           // 7
      both,                                           // 8
  };
  for (std::uint32_t kind = 0; kind <= FS_HELP_LAST; ++kind) {
    EXPECT_EQ(Offers("lo", kind), expected[kind]) << kind;
  }
  for (const char* word : {"flash:/..", "/x", "flash:/l*"}) {
    EXPECT_EQ(Offers(word, FS_HELP_DESTINATION), Lines{}) << word << " can become no name";
  }
  EXPECT_EQ(Offers("new", FS_HELP_DESTINATION), Lines{"STRING"});
}

TEST_F(FileHelp, RefusesWhatIsNoWordOrKind) {
  const UniqueHelpList list(VEC_Alloc(8));
  EXPECT_NE(FS_HelpBaseEx(nullptr, 0, nullptr, list.get()), 0U);
  EXPECT_NE(FS_HelpBaseEx("l", FS_HELP_LAST + 1, nullptr, list.get()), 0U);
  EXPECT_EQ(FS_HelpBaseEx(std::string(4097, 'l').c_str(), 0, nullptr, list.get()), 0U);
  EXPECT_EQ(VEC_GetCount(list.get()), 0U);
}

TEST_F(FileHelp, LooksForPackagesInAMediumsRootOnly) {
  EXPECT_EQ(Offers("flash:/log", FS_HELP_PACKAGE), (Lines{"flash:/logs/", "flash:/Log.txt"}));
  EXPECT_EQ(Offers("flash:/logs/", FS_HELP_PACKAGE), Lines{});
  EXPECT_EQ(Offers("flash:/logs/", FS_HELP_EXISTING_FILE), (Lines{"flash:/logs/diag.log", "flash:/logs/old/"}));
}

TEST_F(FileHelp, LeavesOutWhatTheFilterRefuses) {
  const FS_HELP_FILTER_F only_logs = [](const char* full) -> std::uint32_t {
    return std::string(full) == "/mnt/flash:/logs" ? 0 : 1;
  };
  EXPECT_EQ(Offers("flash:/", kAny, only_logs), Lines{"flash:/logs/"});
  EXPECT_EQ(Offers("Log.txt", kAny, only_logs), Lines{});
  EXPECT_EQ(Offers("?", kAny, only_logs).size(), 2U) << "media are not filtered";
}

TEST_F(FileHelp, NeedsTheMediumToBePresent) {
  fs::remove("/mnt/slot0#flash:");
  EXPECT_EQ(Offers("l", kAny), Lines{});
  EXPECT_EQ(Offers("flash:/", kAny), Lines{});
  EXPECT_EQ(Offers("Log.txt", FS_HELP_DESTINATION), Lines{"STRING"});
}

}  // namespace
