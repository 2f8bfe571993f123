// Input that no client should give: shared with another reader, made of packets, or not to be read at all.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <string>
#include <string_view>

#include "core/descriptor.h"
#include "core/descriptor_io.h"
#include "server/line_input.h"

namespace orvane::test {
namespace {

TEST(LineInputSharingTest, LinesThatCameInPlaceOfTheOneSeenAreStillToldApart) {
  std::array<int, 2> ends{};
  ASSERT_EQ(pipe(ends.data()), 0);
  const Descriptor readingEnd(ends[0]);
  const Descriptor writingEnd(ends[1]);
  LineInput input(readingEnd.get());
  ASSERT_EQ(writeFully(writingEnd.get(), "one\nseconds\n"), 0);
  EXPECT_EQ(input.take(), "one\n");
  // Someone else reads the line that was seen, and shorter ones follow.
  std::array<char, 8> seconds{};
  ASSERT_EQ(read(readingEnd.get(), seconds.data(), seconds.size()), 8);
  ASSERT_EQ(writeFully(writingEnd.get(), "a\n\nbc\ndef\n"), 0);
  EXPECT_EQ(input.take(), "a\n");
  EXPECT_EQ(input.take(), "\n");
  EXPECT_EQ(input.take(), "bc\n");
  std::string line;
  while (!line.ends_with('\n')) line += input.take();
  EXPECT_EQ(line, "def\n");
}

// Of a packet, what is not read at once is lost; so the next packet is never taken for its rest.
TEST(LineInputPacketTest, OfEachPacketTheFirstByteIsRead) {
  std::array<int, 2> ends{};
  ASSERT_EQ(socketpair(AF_UNIX, SOCK_DGRAM, 0, ends.data()), 0);
  const Descriptor readingEnd(ends[0]);
  const Descriptor writingEnd(ends[1]);
  LineInput input(readingEnd.get());
  for (const std::string_view packet : {"a\nlost", "b", "\n"}) {
    ASSERT_EQ(send(writingEnd.get(), packet.data(), packet.size(), 0), static_cast<ssize_t>(packet.size()));
  }
  EXPECT_EQ(input.take(), "a");
  EXPECT_EQ(input.take(), "b");
  EXPECT_EQ(input.take(), "\n");
}

TEST(LineInputFailureTest, AFailedReadIsAnEnd) {
  EXPECT_TRUE(LineInput(-1).take().empty());
  const Descriptor directory(open("/", O_RDONLY));
  EXPECT_TRUE(LineInput(directory.get()).take().empty());
  const Descriptor nothing(open("/dev/null", O_RDONLY));
  EXPECT_TRUE(LineInput(nothing.get()).take().empty());
}

}  // namespace
}  // namespace orvane::test
