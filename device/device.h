#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace device {

/// A storage medium, empty unless it starts with a copy of a directory.
struct Medium {
  std::string name;         ///< device name with its colon, such as "flash:"
  std::uint64_t bytes = 0;  ///< size of the file system on it
  std::string contents;     ///< directory of the host that is copied onto it when it is made; "": none
  bool operator==(const Medium&) const = default;
};

/// A text that stands on the device in place of what the root file system holds. One that starts with "#!" is
/// executable.
struct FileText {
  std::string path;                 ///< absolute, on the device; missing directories are made
  std::optional<std::string> text;  ///< nullopt: the file is removed
  bool operator==(const FileText&) const = default;
};

/// A file of the host that is copied onto the device. A program brings the shared libraries it needs.
struct HostFile {
  std::string host_path;
  std::string path;  ///< absolute, on the device
  bool operator==(const HostFile&) const = default;
};

/// What a device is made of and how its shell is started.
struct BootOptions {
  std::string shell;             ///< the program on the host; it stands as /sbin/esh on the device
  bool has_lab_servers = false;  ///< FTP, TFTP, telnet and SSH servers run there, see LabNotice
  std::string lab_directory;     ///< of the host: what FTP and TFTP give out and receive; "": their own
  std::vector<std::string> arguments = {"scmd"};  ///< of the shell, without its name
  std::optional<std::string> term = "xterm";      ///< TERM of the shell; nullopt: not set
  std::vector<std::string> environment;           ///< "NAME=value", added to the shell's environment
  unsigned short columns = 80;                    ///< window of the console; 0 by 0: the size is not known
  unsigned short rows = 24;
  std::vector<Medium> media;  ///< see DefaultMedia
  std::vector<FileText> files;
  std::vector<HostFile> host_files;
  bool operator==(const BootOptions&) const = default;
};

/// An empty flash: of 32 MB and an empty cfa0: of 16 MB.
std::vector<Medium> DefaultMedia();

/// Has media that have sample files in this project start with them, so that an operator finds something there.
void FillWithSamples(std::vector<Medium>& media);

/// Options for the shell and the device files of the build that this library belongs to, with the default media.
BootOptions DefaultBootOptions();

/// What a command left behind.
struct CommandResult {
  bool finished = false;  ///< false: it could not be started, or ran longer than it was given
  int status = -1;        ///< exit status; 128 + number when a signal ended it
  std::string output;     ///< what it wrote to standard output
  std::string errors;     ///< what it wrote to standard error
};

/// What became of a device, or of the shell on it.
enum class Outcome {
  kRunning,     ///< the shell runs
  kHandedOver,  ///< the shell ended and /sbin/scmd has the console; the device is up
  kShellEnded,  ///< the shell ended and nothing followed it; the device is up
  kRebooted,    ///< the device restarted itself: it is down until Boot is called again
  kPoweredOff,  ///< the device halted itself, or PowerOff was called
  kDied         ///< the device stopped in another way
};

/// Name of an outcome for messages.
const char* OutcomeName(Outcome outcome);

constexpr std::chrono::milliseconds kCommandTime{20000};

/// A device with a console that runs the shell. Media keep their contents from one boot to the next; everything else
/// is made anew at each boot, and all of it vanishes with this object or with the process that owns it.
class Device {
 public:
  Device() = default;
  Device(const Device&) = delete;
  Device& operator=(const Device&) = delete;
  virtual ~Device() = default;

  /// Starts the device and its shell. A device that is up is powered off first.
  /// @return an empty text, or one line that says what is missing or went wrong.
  [[nodiscard]] virtual std::string Boot() = 0;

  /// Begins a boot, like Boot, and does not wait until the shell starts: an emulated machine takes seconds. What goes
  /// wrong later is an outcome, and a line of the report.
  [[nodiscard]] virtual std::string PowerOn() = 0;

  /// @return true from PowerOn until the shell starts or the device is down.
  [[nodiscard]] virtual bool IsStarting() const = 0;

  /// The console, seen from the operator's side: what is written here is typed, what is read here was printed. The
  /// descriptor is non-blocking and belongs to the device; a boot replaces it. -1 before the first boot.
  [[nodiscard]] virtual int Console() const = 0;

  /// Changes the size of the console's window; the shell's foreground process gets SIGWINCH.
  virtual void ResizeConsole(unsigned short columns, unsigned short rows) = 0;

  /// Runs a command with /bin/sh -c on the device, beside the shell and without a terminal.
  /// @param input  what the command reads from its standard input.
  /// @param time   after this time the command is killed.
  virtual CommandResult Run(const std::string& command, const std::string& input = {},
                            std::chrono::milliseconds time = kCommandTime) = 0;

  /// Runs a command with the host's /bin/sh -c on the far side of m-eth0, where the machines stand that the device
  /// can reach. Processes that it leaves running end with the device object.
  virtual CommandResult RunInLab(const std::string& command, const std::string& input = {},
                                 std::chrono::milliseconds time = kCommandTime) = 0;

  /// @return the bytes of a file of the device; nullopt when it cannot be read.
  std::optional<std::string> ReadFile(const std::string& path);

  /// Writes a file on the device, replacing what it held.
  [[nodiscard]] bool WriteFile(const std::string& path, const std::string& bytes);

  /// Writes onto a medium until not one block of it is free. The file that fills it is called "fill".
  [[nodiscard]] bool FillMedium(const std::string& name);

  /// Has a medium take no more writes.
  [[nodiscard]] bool ProtectMedium(const std::string& name);

  /// Pulls a medium out of the running device, whatever is open on it. It is there again after the next boot.
  [[nodiscard]] virtual bool PullMedium(const std::string& name) = 0;

  /// Pulls the cable out of m-eth0 at its far side, or puts it in again; a boot finds it put in.
  /// @return false when that failed.
  [[nodiscard]] virtual bool PlugCable(bool in) = 0;

  /// What an operator should know of the lab's servers, in lines, once the device was started: addresses, account,
  /// files, and which server could not be started. Empty without servers.
  [[nodiscard]] virtual const std::string& LabNotice() const = 0;

  /// What became of the device so far; waits at most `time` for something other than kRunning.
  virtual Outcome WaitForOutcome(std::chrono::milliseconds time) = 0;

  /// Exit status of the shell once the outcome is kShellEnded; 128 + number when a signal ended it.
  [[nodiscard]] virtual int ShellStatus() const = 0;

  /// Takes the power away: every process of the device ends at once. Media keep their contents.
  virtual void PowerOff() = 0;

  /// What happened since the device was made, one line for each event.
  [[nodiscard]] virtual const std::string& Report() const = 0;
};

/// Makes a device in namespaces of this machine. It needs no privileges where user namespaces are allowed. Nothing is
/// started before the first Boot; the device ends with the thread that called it.
std::unique_ptr<Device> MakeNativeDevice(BootOptions options);

/// The same for a device that is an emulated 64-bit Arm machine with a kernel, modules and file systems of its own. It
/// differs from a native device in this:
/// - its console is a serial line, which has no window: the options' size and ResizeConsole change nothing;
/// - media are disks with FAT file systems, whose names know no upper and lower case;
/// - programs among the host files must be for Arm. The default shell stands for the one built by preset arm64.
std::unique_ptr<Device> MakeArm64Device(BootOptions options);

/// @return the text in single quotes, as one word of a shell command.
std::string ShellQuoted(const std::string& text);

}  // namespace device
