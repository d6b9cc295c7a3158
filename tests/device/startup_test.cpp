#include "tests/device/operator_console.h"

namespace {

constexpr char kConsoleSwitch[] = "/proc/sys/7/8/1";

/// Start-up with tools that only note how they were called.
struct StartUp : OperatorConsole {
  void SetUp() override {
    // An impatient operator's Ctrl+C reaches the shell, too.
    Replace("/etc/pkg/esh/mount.sh",
            "#!/bin/sh\nkill -INT $$ $PPID\necho mount.sh $(stty -a | grep -o -e '-echo ') >> /tmp/calls\n");
    Record("insmod");
    Record("ifconfig");
  }

  /// Stands a recorder in for a tool. @param rest what it does besides.
  void Record(const std::string& tool, const std::string& rest = "") {
    Replace("/bin/" + tool, "#!/bin/sh\necho " + tool + " $* >> /tmp/calls\n" + rest + "\n");
  }

  std::string Calls() { return Run("cat /tmp/calls"); }
};

/// With kernel settings and a list of modules that stand there without a module; and the steps that are the same on
/// every kernel.
struct NativeStartUp : StartUp {};

TEST_F(StartUp, RunsItsToolsInOrderAndGivesTheConsoleToRootAlone) {
  BootToPrompt();
  EXPECT_EQ(Calls(),
            "mount.sh -echo\n"
            "insmod /lib/modules/addon.ko\n"
            "insmod /lib/modules/ipstack.ko\n"
            "ifconfig lo up\n"
            "ifconfig m-eth0 up\n");
  EXPECT_EQ(Run("grep -E 'Umask|SigBlk' /proc/" + ShellPid() + "/status; grep -o 'min = .*'<<.\n" + Modes() + "."),
            "Umask:\t0000\nSigBlk:\t0000000000000000\nmin = 0; time = 1;\n");
  Run("chown 1:1 " + ConsolePath() + "; chmod 666 " + ConsolePath());
  NewShell();
  EXPECT_EQ(Run("stat -c '%u %g %a' " + ConsolePath()), "0 0 600\n");

  // Nobody else exists where the device is an ordinary user's; elsewhere user namespaces may be forbidden.
  const device::CommandResult stranger = Device().Run(
      "unshare -U true && exec unshare -U /sbin/esh scmd; echo other:x:1:1::/: >> /etc/passwd;"
      "exec start-stop-daemon -S -c other -p /none -x /sbin/esh -- scmd");
  EXPECT_EQ(stranger.output, "login from a non-root user\n");
  EXPECT_EQ(stranger.status, 255);
}

TEST_F(StartUp, ReallyRebootsWithoutAConsole) {
  options.files = {{"/etc/pkg/esh/ttyname.conf", std::nullopt}};
  Boot();
  EXPECT_EQ(Outcome(), device::Outcome::kRebooted);
}

TEST_F(NativeStartUp, WithoutIpStackHasNoInterfaceViewAndLoadsNoModuleTwice) {
  options.files.push_back({"/lib/modules/ipstack.ko", std::nullopt});
  Replace("/proc/modules", "fat 16384 0\naddon 16384 0 - Live 0x0000000000000000\n");
  BootToPrompt();
  EXPECT_EQ(Calls(), "mount.sh -echo\n");
  Command("system-view");
  EXPECT_NE(Command("interface m-eth0").find("Unrecognized command"), std::string::npos);
}

TEST_F(NativeStartUp, RebootsWithoutAWordAfterAStepThatCounts) {
  // Without a terminal of its own the shell cannot start any tools, and yet must reboot.
  const std::tuple<const char*, const char*, std::optional<std::string>, bool> kFailures[] = {
      {"no console named", "/etc/pkg/esh/ttyname.conf", std::nullopt, false},
      {"nothing in the console's file", "/etc/pkg/esh/ttyname.conf", " \n", false},
      {"no console at all", "/etc/pkg/esh/ttyname.conf", "/dev/null\n", false},
      {"the IP stack does not load", "/bin/insmod",
       "#!/bin/sh\necho insmod $* >> /tmp/calls\n[ $1 = /lib/modules/addon.ko ]\n", true},
      {"no loopback interface", "/bin/ifconfig", "#!/bin/sh\necho ifconfig $* >> /tmp/calls\n[ $1 = m-eth0 ]\n", true},
  };
  Record("reboot", std::string("cat ") + kConsoleSwitch + " > /tmp/switch");
  Record("ln");
  Replace("/sbin/scmd", "#!/bin/sh\nkill -USR1 1\n");
  const std::vector<device::FileText> usual = options.files;
  for (const auto& [why, path, text, tools_run] : kFailures) {
    SCOPED_TRACE(why);
    options.files = usual;
    options.files.push_back({path, text});
    NewDevice();
    Boot();
    EXPECT_NE(Outcome(), device::Outcome::kRunning);
    EXPECT_EQ(Run("cat /tmp/switch"), "0\n");
    EXPECT_EQ(Run("sed -n '/^ln/p;/^reboot/p' /tmp/calls"),
              std::string(tools_run ? "ln -s /bin/busybox /bin/reboot\n" : "") + "reboot -f\n");
    EXPECT_EQ(Calls().find("ifconfig m-eth0 up") != std::string::npos, tools_run) << "a later step counts too";
    EXPECT_EQ(printed_, "");
  }
}

TEST_F(NativeStartUp, StandsOnItsConsoleAloneWhateverItWasGiven) {
  Replace("/sbin/scmd", "#!/bin/sh\nread -r given < /tmp/given\neval \"exec /sbin/esh scmd $given\"\n");
  BootToPrompt();
  for (const char* given : {"3< /dev/null", "<&- >&- 2>&- 3<&-"}) {
    Run(std::string("echo '") + given + "' > /tmp/given; kill -9 " + ShellPid());
    Expect("<boot>");
    EXPECT_EQ(Run("cd /proc/" + ShellPid() + "/fd; for fd in *; do echo $fd $(readlink $fd); done"),
              "0 /dev/pts/0\n1 /dev/pts/0\n2 /dev/pts/0\n")
        << given;
  }
  Run("! chmod 666 /dev/null 2>&1");  // as it does with what it takes for its console; but this is the machine's own
}

TEST_F(NativeStartUp, GoesOnAfterAStepThatDoesNotCountOnAConsoleOfFifteenCharacters) {
  Replace("/etc/pkg/esh/mount.sh", "#!/bin/sh\nexit 1\n");
  Replace("/bin/insmod", "#!/bin/sh\n[ $1 = /lib/modules/ipstack.ko ]\n");
  Replace("/etc/pkg/esh/ttyname.conf", "\n \t/dev//////pts/0123 4\n");  // fifteen to the first "0"
  BootToPrompt();
  EXPECT_EQ(Device().ReadFile(kConsoleSwitch), "1\n");
  EXPECT_EQ(Command("pwd"), "Working directory doesn't exist.\n") << "nothing was mounted";
}

TEST_F(NativeStartUp, LinksTheDirectoriesBelowMntWhenTheCommandDaemonStartsIt) {
  Replace("/etc/pkg/esh/mount.sh",
          "#!/bin/sh\nmkdir /mnt/cfa0: /mnt/plain\necho x > /mnt/file\nln -s cfa0: /mnt/link\n");
  const std::pair<std::vector<std::string>, const char*> kCases[] = {
      {{"scmd"}, "slot0#cfa0: /mnt/cfa0:\nslot0#plain /mnt/plain\n"}, {{}, ""}, {{"scmd", "x"}, ""}, {{"Scmd"}, ""}};
  for (const auto& [arguments, links] : kCases) {
    options.arguments = arguments;
    options.media.clear();
    NewDevice();
    BootToPrompt();
    EXPECT_EQ(Run("cd /mnt; for link in slot0*; do [ -L $link ] && echo $link $(readlink $link); done; true"), links);
  }
}

TEST_F(NativeStartUp, IsThereOnATerminalThatNobodyKnows) {
  options.columns = options.rows = 0;
  for (const auto& term : {std::optional<std::string>(), {"nonsense"}}) {
    options.term = term;
    NewDevice();
    Boot();
    const std::string notice = "Terminal type \"" + term.value_or("") + "\" is unknown, \"vt100\" is used instead.\n";
    EXPECT_NE(Expect("<boot>").find(notice), std::string::npos);
    Press("pw\tx\177\r", "<boot>pwd x");
    Expect("Working directory doesn't exist.");  // nothing was mounted
  }
}

constexpr char kQuestion[] = "This Command will reboot the device. Continue? [Y/N]:";

/// How a shell ends, and what the process that was started does then.
struct ShellsEnd : OperatorConsole {};
struct NativeShellsEnd : ShellsEnd {};

TEST_F(ShellsEnd, RebootIsCalledOffByANoAndKeepsTheMedia) {
  BootToPrompt();
  EXPECT_EQ(Command("reboot", "n\r"), std::string(kQuestion) + "n\n");
  Run("echo kept > /mnt/flash:/kept.txt");
  Press("reb\r", kQuestion);
  Type("y\r");
  EXPECT_EQ(Outcome(), device::Outcome::kRebooted);
  EXPECT_EQ(printed_.find("<boot>", printed_.rfind(kQuestion)), std::string::npos) << "the tool has returned";
  BootToPrompt();
  EXPECT_NE(Command("dir").find("kept.txt"), std::string::npos);
}

TEST_F(ShellsEnd, TidiesUpAndGivesTheConsoleToTheCommandProgram) {
  options.media.push_back({"usba0:", 1 << 20, ""});
  Replace("/sbin/scmd", "#!/bin/sh\nkill -USR1 1\nexec sleep 60\n");
  BootToPrompt();
  ASSERT_EQ(Device().ReadFile(kConsoleSwitch), "1\n");
  Run("kill -9 " + ShellPid());
  EXPECT_EQ(Outcome(), device::Outcome::kHandedOver);
  EXPECT_EQ(Device().ReadFile(kConsoleSwitch), "0\n");
  EXPECT_EQ(Run("cd /mnt; ls -d slot0*"), "slot0#usba0:\n") << "only the links of flash: and cfa0: go";
  if (!IsArm64())  // its kernel is built without a hotplug helper
    EXPECT_EQ(Device().ReadFile("/proc/sys/kernel/hotplug").value_or(""), std::string("/sbin/hotplug\0", 14));
}

TEST_F(NativeShellsEnd, IsQuietWithoutACommandProgram) {
  options.files.push_back({"/sbin/scmd", std::nullopt});
  BootToPrompt();
  Run("kill -9 " + ShellPid());
  EXPECT_EQ(Outcome(), device::Outcome::kShellEnded);
  EXPECT_EQ(Device().ShellStatus(), 0);
}

}  // namespace
