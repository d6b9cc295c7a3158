#include "tests/device/lab_console.h"

void LabConsole::UseLab() {
  options.has_lab_servers = true;
  UseDevice();
  ASSERT_NE(Board().LabNotice().find("servers  ftp tftp telnet ssh2 "), std::string::npos) << Board().LabNotice();
  for (const char* line : {"system-view", "interface m-eth0", "ip address 10.0.0.2 24", "ipv6 address fd00::2 64",
                           "ip gateway 10.0.0.254", "ipv6 gateway fe80::1", "quit", "quit"})
    Command(line);
  Run("rm -rf /root/.ssh/*");  // the hosts that another test came to know
  modes_ = Modes();
}

void LabConsole::SignalSessions(const std::string& server, const std::string& signal) {
  // The server itself is a child of the lab's first process.
  const std::string command = "for process in $(busybox pidof " + server +
                              "); do grep -q 'PPid:[[:space:]]1$' /proc/$process/status || kill -" + signal +
                              " $process; done";
  const device::CommandResult result = Board().RunInLab(command);
  EXPECT_TRUE(result.finished && result.status == 0) << command << ": " << result.errors;
}
