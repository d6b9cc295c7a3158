#pragma once

#include <poll.h>

#include <cstdint>
#include <string>
#include <vector>

#include "device/arm64/frame_stream.h"
#include "util/unique_handle.h"

namespace device {

/// Carries the standard streams of commands over a line of frames: at each end a stream is either a source, which is
/// read here and sent, or a sink, which is written here with what comes.
class StreamCarrier {
 public:
  /// @param frames  outlives the carrier.
  explicit StreamCarrier(FrameStream& frames) : frames_(frames) {}

  void AddSource(std::uint32_t command, int stream, UniqueFd descriptor);
  void AddSink(std::uint32_t command, int stream, UniqueFd descriptor);

  /// Adds what the carrier waits for.
  void Watch(std::vector<pollfd>& waiting) const;
  /// Moves what can be moved now.
  void Carry();
  /// Takes a frame of kind kStream.
  void Accept(const Frame& frame);

  /// Sends what the sources of a command still hold, and closes them.
  void FinishSources(std::uint32_t command);
  /// @return true while bytes for a sink of the command wait here.
  [[nodiscard]] bool HasUnwritten(std::uint32_t command) const;
  /// Closes everything of a command.
  void Drop(std::uint32_t command);

 private:
  struct Stream {
    std::uint32_t command = 0;
    int number = 0;
    bool is_source = false;
    UniqueFd descriptor;
    std::string unwritten;  ///< of a sink
    bool ended = false;     ///< of a sink: nothing comes after `unwritten`
  };

  void Add(std::uint32_t command, int number, bool is_source, UniqueFd descriptor);
  bool Forward(Stream& source);
  static void Write(Stream& sink);

  FrameStream& frames_;
  std::vector<Stream> streams_;  ///< one without a descriptor is over
};

}  // namespace device
