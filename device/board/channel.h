#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "util/unique_handle.h"

namespace device {

/// What the launcher, the board and the device's first process tell each other.
enum class MessageKind : std::uint32_t {
  kProblem,       ///< something could not be set up: text
  kIdentities,    ///< launcher -> board: the users of its namespace are mapped
  kBoardReady,    ///< board -> launcher: media and lab are there; text is for the operator
  kPowerOn,       ///< launcher -> board: boot a device that answers on the descriptor that comes along
  kPowerOff,      ///< launcher -> board
  kDeviceDown,    ///< board -> launcher: value is the wait status of the device's first process
  kConsole,       ///< device -> launcher: the device has power; its console comes along
  kShellStarts,   ///< device -> launcher: the device is up
  kRun,           ///< launcher -> device or board: text is a command, its descriptors 0, 1 and 2 come along
  kKill,          ///< launcher -> device or board: the command `id` ran too long
  kCommandEnded,  ///< answer to kRun: value is the exit status
  kHandedOver,    ///< device -> launcher: /sbin/scmd has the console
  kShellEnded,    ///< device -> launcher: value is the exit status
  kPlugCable      ///< launcher -> device: value 1: the cable was put in, 0: it was pulled out
};

struct Message {
  MessageKind kind = MessageKind::kProblem;
  std::uint32_t id = 0;
  std::int32_t value = 0;
  std::string text;
  std::vector<UniqueFd> descriptors;
};

/// One end of a socket that carries messages between processes of the launcher's family.
class Channel {
 public:
  static constexpr std::size_t kMaxText = 131072;
  static constexpr std::size_t kMaxDescriptors = 4;

  Channel() = default;
  /// @param socket one of a pair; see MakePair.
  explicit Channel(UniqueFd socket) : socket_(std::move(socket)) {}

  /// Makes a connected pair of sockets, both closed on exec.
  static bool MakePair(UniqueFd& one, UniqueFd& other);

  /// @return false when the other end is gone or the message is too large.
  bool Send(MessageKind kind, std::uint32_t id = 0, std::int32_t value = 0, const std::string& text = {},
            std::span<const int> descriptors = {});

  /// Takes the next message, waiting at most `milliseconds` for one (-1: for ever).
  /// @return nullopt when none came in time or the other end is gone; see Closed.
  std::optional<Message> Receive(int milliseconds);

  /// Whether the other end is known to be gone.
  [[nodiscard]] bool Closed() const { return closed_; }
  /// Readable when a message waits or the other end is gone.
  [[nodiscard]] int Descriptor() const { return socket_.Get(); }
  /// Ends the conversation for both ends, whoever else holds a copy of the socket.
  void Shutdown();

 private:
  UniqueFd socket_;
  bool closed_ = false;
};

/// Ends the calling process, which was to bring a device up, with the word why not.
[[noreturn]] void GiveUp(Channel& channel, const std::string& problem);

}  // namespace device
