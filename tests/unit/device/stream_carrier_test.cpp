#include "device/arm64/stream_carrier.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <string>
#include <utility>

#include "device/arm64/frame_stream.h"

namespace {

using device::Frame;
using device::FrameKind;
using device::FrameStream;
using device::StreamCarrier;

constexpr std::uint32_t kCommand = 7;

using Ends = std::pair<UniqueFd, UniqueFd>;

Ends SocketPair() {
  std::array<int, 2> ends{};
  EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()), 0);
  return {UniqueFd(ends[0]), UniqueFd(ends[1])};
}

Ends Pipe() {
  std::array<int, 2> ends{};
  EXPECT_EQ(pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK), 0);
  return {UniqueFd(ends[0]), UniqueFd(ends[1])};
}

/// Adds what can be read now. @return false at the end of the stream.
bool ReadSome(const UniqueFd& descriptor, std::string& text) {
  std::array<char, 65536> block{};
  const ssize_t length = read(descriptor.Get(), block.data(), block.size());
  if (length > 0) text.append(block.data(), static_cast<std::size_t>(length));
  return length != 0;
}

/// Two ends of one line, each with a carrier; what is written at the near end comes out at the far one.
struct StreamCarrierTest : testing::Test {
  explicit StreamCarrierTest(Ends line = SocketPair(), Ends source = Pipe(), Ends sink = Pipe())
      : writing(std::move(source.second)),
        reading(std::move(sink.first)),
        near_frames(std::move(line.first)),
        far_frames(std::move(line.second)) {
    (void)std::signal(SIGPIPE, SIG_IGN);
    near.AddSource(kCommand, 1, std::move(source.first));
    far.AddSink(kCommand, 1, std::move(sink.second));
  }

  void Step() {
    near.Carry();
    near_frames.Flush();
    far_frames.Receive();
    while (std::optional<Frame> frame = far_frames.Next()) far.Accept(*frame);
    far.Carry();
  }

  UniqueFd writing;
  UniqueFd reading;
  FrameStream near_frames;
  FrameStream far_frames;
  StreamCarrier near{near_frames};
  StreamCarrier far{far_frames};
};

TEST_F(StreamCarrierTest, CarriesMoreThanTheLineHoldsAndThenTheEnd) {
  std::string sent(3000000, '\0');
  for (std::size_t i = 0; i < sent.size(); ++i) sent[i] = static_cast<char>(i * 7919 >> 5);
  std::string received;
  std::size_t written = 0;
  bool is_open = true;
  for (int round = 0; is_open && round < 100000; ++round) {
    const ssize_t more = write(writing.Get(), sent.data() + written, sent.size() - written);
    if (more > 0) written += static_cast<std::size_t>(more);
    if (written == sent.size()) writing.Reset();
    Step();
    is_open = ReadSome(reading, received);
  }
  EXPECT_FALSE(is_open) << "the end did not arrive";
  EXPECT_EQ(received, sent);
}

TEST_F(StreamCarrierTest, SendsTheRestOfACommandWhoseChildHoldsTheStream) {
  ASSERT_EQ(write(writing.Get(), "last words", 10), 10);
  near.FinishSources(kCommand);
  Step();
  std::string received;
  ReadSome(reading, received);
  EXPECT_EQ(received, "last words");
}

TEST_F(StreamCarrierTest, ForgetsASinkThatNobodyReads) {
  reading.Reset();
  ASSERT_EQ(write(writing.Get(), "unheard", 7), 7);
  Step();
  EXPECT_FALSE(far.HasUnwritten(kCommand));
}

TEST(FrameStream, PutsAFrameTogetherFromSingleBytes) {
  auto [one, other] = SocketPair();
  auto [raw, end] = SocketPair();
  FrameStream sender(std::move(one));
  FrameStream receiver(std::move(end));
  sender.Send(FrameKind::kCommandEnded, 3, -1, "a");
  sender.Send(FrameKind::kHello);
  std::string bytes;
  ReadSome(other, bytes);
  std::string frames;
  for (const char byte : bytes) {
    ASSERT_EQ(write(raw.Get(), &byte, 1), 1);
    receiver.Receive();
    if (const std::optional<Frame> frame = receiver.Next()) {
      frames += (frame->kind == FrameKind::kHello ? "hello " : "ended ") + std::to_string(frame->value) + frame->bytes;
    }
  }
  EXPECT_EQ(frames, "ended -1ahello 0");
  raw.Reset();
  receiver.Receive();
  EXPECT_TRUE(receiver.Closed());
}

}  // namespace
