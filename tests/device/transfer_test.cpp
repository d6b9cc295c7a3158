#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>

#include "device/board/file_bytes.h"
#include "tests/device/lab_console.h"
#include "util/unique_handle.h"

namespace {

constexpr char kLogin[] = "operator\rharbour\r";
constexpr char kLoginShown[] = "user:operator\npassword:*******\n";

/// Bytes of which no two blocks are alike.
std::string Content(std::size_t size) {
  std::string bytes(size, '\0');
  for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(i * 7 + i / 512 + i / 131072);
  return bytes;
}

/// What was printed but for the bar that newer ones of busybox tftp draw, again and again in one line.
std::string WithoutBar(std::string printed) {
  const std::size_t bar = printed.find("% |");
  if (bar == std::string::npos) return printed;
  const std::size_t begin = printed.rfind('\n', bar) + 1;
  std::size_t end = printed.rfind(" ETA") + std::strlen(" ETA");
  if (printed[end] == '\n') ++end;  // otherwise a message has followed in that line
  return printed.erase(begin, end - begin);
}

/// With servers that give out and receive a directory of the suite's own.
class Transfers : public LabConsole {
 public:
  static void SetUpTestSuite() {
    std::string name = "/tmp/lab-XXXXXX";
    ASSERT_NE(mkdtemp(name.data()), nullptr);
    directory_ = name;
  }
  static void TearDownTestSuite() {
    LabConsole::TearDownTestSuite();
    std::error_code error;
    std::filesystem::remove_all(directory_, error);
  }

 protected:
  void SetUp() override {
    LabConsole::SetUp();
    options.lab_directory = directory_;
  }

  static void Serve(const std::string& name, const std::string& bytes) {
    std::ofstream(directory_ / name, std::ios::binary) << bytes;
  }
  /// Serves the beginning of a file, whose end the server waits for as long as the result lives.
  [[nodiscard]] static UniqueFd ServeBeginning(const std::string& name) {
    const std::string path = directory_ / name;
    EXPECT_EQ(mkfifo(path.c_str(), 0644), 0);
    UniqueFd pipe(open(path.c_str(), O_RDWR | O_CLOEXEC));
    const std::string bytes = Content(1 << 16);  // a pipe's room; in whole blocks, for a shorter one would be the end
    EXPECT_EQ(write(pipe.Get(), bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    return pipe;
  }
  [[nodiscard]] static std::string Received(const std::string& name) {
    return device::FileBytes(directory_ / name).value_or("");
  }
  /// @return bytes of a file on the device; -1: there is none.
  long SizeOf(const std::string& path) { return std::stol(Run("stat -c %s '" + path + "' 2> /dev/null || echo -1")); }

  static std::filesystem::path directory_;
};

std::filesystem::path Transfers::directory_;

TEST_F(Transfers, BringWhatWasSent) {
  UseLab();
  struct Way {
    const char* command;
    const char* answers;
    const char* printed;
    std::vector<std::size_t> sizes;
  };
  const Way kWays[] = {{"tftp 10.0.0.1", "", "", {0, 1024, 20001}},  // 1024: no short block
                       {"tftp ipv6 fd00::1", "", "", {20001}},
                       {"ftp 10.1.0.1", kLogin, kLoginShown, {0, 70001}},
                       {"ftp ipv6 fd00:1::1", kLogin, kLoginShown, {70001}}};
  for (const Way& way : kWays) {
    const std::string command = way.command;
    for (const std::size_t size : way.sizes) {
      SCOPED_TRACE(command + " " + std::to_string(size));
      Serve("there", Content(size));
      EXPECT_EQ(WithoutBar(Command(command + " get there flash:/here", way.answers)), way.printed);
      EXPECT_EQ(WithoutBar(Command(command + " put here back", way.answers)), way.printed);
      EXPECT_EQ(Received("back"), Content(size));
      Run("rm /mnt/flash:/here");
      std::filesystem::remove(directory_ / "back");
    }
  }
}

TEST_F(Transfers, ThatBreakLeaveWhatTheToolLeaves) {
  struct Break {
    const char* why;
    std::string line;
    std::string answers;
    std::function<void()> happens;
    std::string printed;
    bool is_whole;
  };
  const std::string login = kLoginShown;
  const auto press_ctrl_c = [this] { Type(kCtrlC); };
  const auto end_session = [this] {
    SignalSessions("vsftpd", "STOP");  // one must not tell of the other's end
    SignalSessions("vsftpd", "KILL");
  };
  const auto pull_and_plug = [this] {
    EXPECT_TRUE(Board().PlugCable(false));
    Listen(std::chrono::milliseconds(500));
    EXPECT_TRUE(Board().PlugCable(true));
  };
  const Break kBreaks[] = {
      {"Ctrl+C", "tftp 10.0.0.1 get endless flash:/new", "", press_ctrl_c, "", false},
      {"Ctrl+C", "ftp ipv6 fd00::1 get big flash:/new", kLogin, press_ctrl_c, login, false},
      {"the server ends the connection in mid file", "ftp 10.0.0.1 get big flash:/new", kLogin, end_session,
       login + "ftpget: unexpected server response: EOF\n", false},
      {"the link is gone for a moment", "ftp 10.0.0.1 get big flash:/new", kLogin, pull_and_plug, login, true},
  };
  constexpr long kSize = 16 << 20;  // which the FTP server takes 4 s for
  UseLab();
  const UniqueFd endless = ServeBeginning("endless");
  Serve("big", Content(kSize));
  for (const Break& event : kBreaks) {
    SCOPED_TRACE(event.line + ": " + event.why);
    Type(event.line + "\r");
    Expect("\n");
    Type(event.answers);
    ASSERT_TRUE(Eventually([&] { return SizeOf("/mnt/flash:/new") > 50000; }));
    event.happens();
    EXPECT_EQ(WithoutBar(Expect("<boot>")), event.printed + "<boot>");
    EXPECT_EQ(Modes(), PromptModes());
    const long size = SizeOf("/mnt/flash:/new");
    EXPECT_GT(size, 0);
    EXPECT_EQ(size == kSize, event.is_whole) << size;
    Run("rm -f /mnt/flash:/new");
  }
}

TEST_F(Transfers, ThatAreRefusedLeaveTheOldFileAlone) {
  UseLab();
  Serve("big", Content(1 << 20));
  // Room for less than that; TFTP to the emulated device is slow.
  Run("cd /mnt/cfa0: && dd if=/dev/zero of=fill bs=1024 count=$(($(df -k . | awk 'END { print $4 }') - 300))");
  Run("echo old > /mnt/flash:/old");
  const std::string login = kLoginShown;
  const std::string overwrite = "flash:/old already exists. Overwrite it?[Y/N]:y\n";
  ExpectAll({
      {"tftp 10.0.0.1 get none flash:/old", "y\r", overwrite + "tftp: server error: (1) File not found\n"},
      {"ftp 10.0.0.1 get none flash:/old", std::string(kLogin) + "y\r",
       login + overwrite + "ftpget: unexpected server response to RETR: 550 Failed to open file.\n"},
      {"ftp ipv6 fd00::1 get big cfa0:/new", "operator\rharbor\r",
       "user:operator\npassword:******\nftpget: unexpected server response to PASS: 530 Login incorrect.\n"},
      // The medium is full: this tool leaves the part, the other removes it.
      {"ftp 10.0.0.1 get big cfa0:/part", kLogin, login + "ftpget: write error: No space left on device\n"},
  });
  EXPECT_EQ(Run("cat /mnt/flash:/old; ls /mnt/cfa0:"), "old\nfill\npart\n");
  Run("rm /mnt/cfa0:/part");
  const std::string refused = WithoutBar(Command("tftp 10.0.0.1 get big cfa0:/new"));
  EXPECT_TRUE(refused == "tftp: write error\n" || refused == "tftp: write error\n\n") << refused;  // ends a bar's line
  EXPECT_EQ(Run("ls /mnt/cfa0:"), "fill\n");
  EXPECT_EQ(Modes(), PromptModes());
}

}  // namespace
