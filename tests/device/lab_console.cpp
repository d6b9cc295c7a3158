#include "tests/device/lab_console.h"

#include <cstdlib>

void LabConsole::SetUp() {
  OperatorConsole::SetUp();
  std::string name = "/tmp/lab-XXXXXX";
  ASSERT_NE(mkdtemp(name.data()), nullptr);
  directory_ = name;
  options.has_lab_servers = true;
  options.lab_directory = name;
}

void LabConsole::TearDown() {
  OperatorConsole::TearDown();
  NewDevice();
  std::error_code error;
  std::filesystem::remove_all(directory_, error);
}

void LabConsole::BootIntoLab() {
  BootToPrompt();
  ASSERT_NE(Board().LabNotice().find("servers  ftp tftp telnet ssh2 "), std::string::npos) << Board().LabNotice();
  for (const char* line : {"system-view", "interface m-eth0", "ip address 10.0.0.2 24", "ipv6 address fd00::2 64",
                           "ip gateway 10.0.0.254", "ipv6 gateway fe80::1", "quit", "quit"})
    Command(line);
  modes_ = Modes();
}

std::string LabConsole::Ask(const std::string& line, const std::string& answers) {
  Type(line + "\r");
  Expect("\n");
  Type(answers);
  const std::string printed = Expect("<boot>");
  return printed.substr(0, printed.rfind("<boot>"));
}

void LabConsole::RunInLab(const std::string& command) {
  const device::CommandResult result = Board().RunInLab(command);
  EXPECT_TRUE(result.finished && result.status == 0) << command << ": " << result.errors;
}

void LabConsole::SignalSessions(const std::string& server, const std::string& signal) {
  // The server itself is a child of the lab's first process.
  RunInLab("for process in $(busybox pidof " + server +
           "); do grep -q 'PPid:[[:space:]]1$' /proc/$process/status || kill -" + signal + " $process; done");
}

void LabConsole::SignalServer(const std::string& server, const std::string& signal) {
  RunInLab("kill -" + signal + " $(busybox pidof " + server + ")");
}
