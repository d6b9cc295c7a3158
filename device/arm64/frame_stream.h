#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "util/unique_handle.h"

namespace device {

/// What the two ends of the line into an emulated machine tell each other.
enum class FrameKind : std::uint32_t {
  kHello,         ///< guest -> host: the machine is up
  kStartShell,    ///< host -> guest: bytes are words and environment, see PackTexts; value counts the words
  kRun,           ///< host -> guest: bytes are a command
  kKill,          ///< host -> guest: the command `id` ran too long
  kStream,        ///< both ways: bytes of stream `value` (0, 1, 2) of command `id`; none: the stream has ended
  kCommandEnded,  ///< guest -> host: value is the wait status; all of its streams came before
  kHandedOver,    ///< guest -> host: /sbin/scmd has the console
  kShellEnded     // guest -> host: value is the wait status
};

struct Frame {
  FrameKind kind = FrameKind::kHello;
  std::uint32_t id = 0;
  std::int32_t value = 0;
  std::string bytes;
};

/// Carries frames over a line of bytes. A frame is four 32-bit numbers, lowest byte first (kind, id, value, length),
/// and `length` bytes. The descriptor is made non-blocking; nothing here waits.
class FrameStream {
 public:
  explicit FrameStream(UniqueFd line);

  /// Puts a frame behind those that wait, and writes what the line takes.
  void Send(FrameKind kind, std::uint32_t id = 0, std::int32_t value = 0, std::string_view bytes = {});
  /// Writes what the line takes.
  void Flush();
  /// @return how many bytes wait for the line.
  [[nodiscard]] std::size_t Unsent() const { return unsent_.size(); }

  /// Takes the bytes that came.
  void Receive();
  /// @return the next frame that is complete; nullopt when there is none.
  std::optional<Frame> Next();

  [[nodiscard]] int Descriptor() const { return line_.Get(); }
  /// The line cannot be used any more.
  [[nodiscard]] bool Closed() const { return closed_; }

 private:
  UniqueFd line_;
  std::string unsent_;
  std::string received_;
  bool closed_ = false;
};

}  // namespace device
