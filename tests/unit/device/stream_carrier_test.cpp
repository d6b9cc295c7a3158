#include "device/arm64/stream_carrier.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

#include "device/arm64/frame_stream.h"

namespace {

using device::Frame;
using device::FrameKind;
using device::FrameStream;
using device::StreamCarrier;

constexpr std::uint32_t kCommand = 7;

using Ends = std::pair<UniqueFd, UniqueFd>;

Ends Connected() {
  std::array<int, 2> ends{};
  EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, ends.data()), 0);
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
  explicit StreamCarrierTest(Ends line = Connected(), Ends source = Connected(), Ends sink = Connected())
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
  std::string_view rest = sent;
  bool is_open = true;
  for (int round = 0; is_open && round < 100000; ++round) {
    const ssize_t written = write(writing.Get(), rest.data(), rest.size());
    if (written > 0) rest.remove_prefix(static_cast<std::size_t>(written));
    if (rest.empty()) writing.Reset();
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

TEST(FrameStream, KeepsAFrameTogetherAndTellsTheEnd) {
  auto [line, end] = Connected();
  FrameStream receiver(std::move(end));
  FrameStream(std::move(line)).Send(FrameKind::kCommandEnded, kCommand, -1, "a");
  receiver.Receive();
  EXPECT_FALSE(receiver.Closed());
  const std::optional<Frame> frame = receiver.Next();
  ASSERT_TRUE(frame);
  EXPECT_EQ(std::tuple(frame->kind, frame->id, frame->value, frame->bytes),
            std::tuple(FrameKind::kCommandEnded, kCommand, -1, std::string("a")));
  receiver.Receive();
  EXPECT_TRUE(receiver.Closed());
}

}  // namespace
