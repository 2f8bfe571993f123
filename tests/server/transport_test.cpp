#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <string>
#include <thread>

#include "core/descriptor.h"
#include "core/descriptor_io.h"
#include "tests/support/fake_platform.h"
#include "tests/support/json_text.h"
#include "tests/support/server_run.h"
#include "tests/support/sizes.h"

namespace orvane::test {
namespace {

const std::string oversizeReport = "orvane-mcp: dropped oversize line (>1048576 bytes)\n";

/// The ids of the responses, in order.
std::string idsOf(const ServerOutput& result) {
  std::string ids;
  for (const JSON& message : result.messages()) ids += writeCompactJSON(*message.asObject()->find("id")) + " ";
  return ids;
}

std::string ping(int id) { return R"({"jsonrpc":"2.0","id":)" + std::to_string(id) + R"(,"method":"ping"})"; }

/// A ping of exactly `size` bytes.
std::string pingOfSize(int id, std::size_t size) {
  std::string line = ping(id);
  line.pop_back();
  line += R"(,"x":")";
  line.append(size - line.size() - 2, 'x');
  return line + "\"}";
}

TEST(TransportTest, TheLineLimitIsOneMebibyteWithoutTheLineFeed) {
  for (const std::size_t size : {mebibyte - 1, mebibyte}) {
    const ServerOutput result = runServer(pingOfSize(1, size) + "\n" + ping(2) + "\n");
    EXPECT_EQ(idsOf(result), "1 2 ") << size;
    EXPECT_EQ(result.diagnostics, "");
  }
  for (const std::size_t size : {mebibyte + 1, mebibyte + 2, 2 * mebibyte, 2 * mebibyte + 1, 3 * mebibyte + 5}) {
    const ServerOutput result = runServer(pingOfSize(1, size) + "\n" + ping(2) + "\n");
    EXPECT_EQ(idsOf(result), "2 ") << size;
    EXPECT_EQ(result.diagnostics, oversizeReport) << size;
  }
}

TEST(TransportTest, BytesCountNotCharacters) {
  std::string line = ping(1);
  line.pop_back();
  line += R"(,"x":")";
  while (line.size() < mebibyte) line += "\xE2\x82\xAC";
  EXPECT_EQ(runServer(line + "\"}\n").diagnostics, oversizeReport);
}

TEST(TransportTest, ACarriageReturnCounts) {
  EXPECT_EQ(idsOf(runServer(pingOfSize(1, mebibyte - 1) + "\r\n")), "1 ");
  EXPECT_EQ(runServer(pingOfSize(1, mebibyte) + "\r\n").diagnostics, oversizeReport);
}

TEST(TransportTest, AfterAnOverflowNothingOfTheLineIsUsed) {
  // What follows the overflow is a request of its own, with and without one byte that the overflow swallows.
  for (const std::size_t filler : {mebibyte, mebibyte + 1, 2 * mebibyte, 2 * mebibyte + 1, 2 * mebibyte + 2}) {
    const ServerOutput result = runServer(std::string(filler, ' ') + ping(1) + "\n" + ping(2) + "\n");
    EXPECT_EQ(idsOf(result), "2 ") << filler;
    EXPECT_EQ(result.diagnostics, oversizeReport) << filler;
  }
}

TEST(TransportTest, EachOversizeLineIsReportedOnce) {
  const std::string line = std::string(mebibyte + 1, 'x') + "\n";
  const ServerOutput result = runServer(line + line + ping(1) + "\n" + line);
  EXPECT_EQ(idsOf(result), "1 ");
  EXPECT_EQ(result.diagnostics, oversizeReport + oversizeReport + oversizeReport);
}

TEST(TransportTest, AnOversizeLineOfBrokenUTF8IsOnlyOversize) {
  EXPECT_EQ(runServer(std::string(mebibyte + 1, '\xFF') + "\n").diagnostics, oversizeReport);
}

TEST(TransportTest, AnOversizeLastLineIsDroppedSilently) {
  for (const std::size_t size : {mebibyte + 1, mebibyte + 2, 2 * mebibyte + 1, 2 * mebibyte + 2}) {
    const ServerOutput result = runServer(ping(1) + "\n" + std::string(size, 'x'));
    EXPECT_EQ(idsOf(result), "1 ");
    EXPECT_EQ(result.diagnostics, "") << size;
  }
}

TEST(TransportTest, AnUnfinishedLastLineIsServed) {
  EXPECT_EQ(idsOf(runServer(ping(1) + "\n" + ping(2))), "1 2 ");
  EXPECT_EQ(idsOf(runServer(pingOfSize(1, mebibyte))), "1 ");
  EXPECT_EQ(runServer("{").messages().size(), 1U) << "a parse error";
}

TEST(TransportTest, NothingComesOfNothing) {
  for (const char* input : {"", "\n", "\n\n\n"}) {
    const ServerOutput result = runServer(input);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.diagnostics, "");
  }
}

TEST(TransportTest, BlankLinesBetweenRequestsAreSkipped) {
  EXPECT_EQ(idsOf(runServer("\n" + ping(1) + "\n\n\n" + ping(2) + "\n\n")), "1 2 ");
}

TEST(TransportTest, ALineMayEndInCarriageReturnAndLineFeed) {
  EXPECT_EQ(idsOf(runServer(ping(1) + "\r\n" + ping(2) + "\r\n")), "1 2 ");
  EXPECT_EQ(idsOf(runServer("\r\n")), "null ") << "a lone carriage return is a line that is not JSON";
  EXPECT_EQ(idsOf(runServer(ping(1) + "\r" + ping(2) + "\n")), "null ") << "it separates no lines";
}

TEST(TransportTest, LinesThatAreNotUTF8AreSkippedSilently) {
  for (const char* line : {"\xFF", "{\"id\":1,\"method\":\"\xC3\"}", "\xED\xA0\x80", "\xC0\x80", "\xF4\x90\x80\x80",
                           "\x80", "ab\xE2\x82"}) {
    const ServerOutput result = runServer(std::string(line) + "\n" + ping(2) + "\n");
    EXPECT_EQ(idsOf(result), "2 ");
    EXPECT_EQ(result.diagnostics, "");
  }
}

TEST(TransportTest, ALastLineThatIsNotUTF8IsTheEnd) {
  const ServerOutput result = runServer(ping(1) + "\n{\"id\":2,\"method\":\"\xFF\"}");
  EXPECT_EQ(idsOf(result), "1 ");
  EXPECT_EQ(result.diagnostics, "");
}

TEST(TransportTest, NulIsAnOrdinaryByteOfALine) {
  const std::string nul(1, '\0');
  EXPECT_EQ(idsOf(runServer(ping(1) + nul + "\n" + ping(2) + "\n")), "null 2 ");
  EXPECT_EQ(idsOf(runServer(nul + "\n" + ping(2) + "\n")), "null 2 ");
}

TEST(TransportTest, ResponsesAreOneLineEachInTheOrderOfTheRequests) {
  std::string input;
  std::string expected;
  for (int id = 0; id < 500; ++id) {
    input += ping(id) + "\n";
    expected += std::to_string(id) + " ";
  }
  input += R"({"id":"\n\r","method":"\n"})"
           "\n";
  const ServerOutput result = runServer(input);
  EXPECT_EQ(idsOf(result), expected + R"("\n\r" )");
  EXPECT_EQ(std::count(result.output.begin(), result.output.end(), '\n'), 501);
}

TEST(TransportTest, SlashesAreWrittenAsTheyAre) {
  const ServerOutput result = runServer(R"({"id":"a\/b","method":"x\/y"})"
                                        "\n");
  EXPECT_NE(result.output.find("a/b"), std::string::npos);
  EXPECT_NE(result.output.find("x/y"), std::string::npos);
  EXPECT_EQ(result.output.find("\\/"), std::string::npos);
}

TEST(WriteMessageTest, AMessageThatCannotBeSerialisedIsReported) {
  std::array<int, 2> output{};
  std::array<int, 2> diagnostics{};
  ASSERT_EQ(pipe(output.data()), 0);
  ASSERT_EQ(pipe(diagnostics.data()), 0);
  Server server(fullRegistry(), -1, output[1], diagnostics[1]);
  server.writeMessage(JSON::Object{{"bad", "\xFF"}});
  server.writeMessage(JSON::Object{{"good", 1}});
  std::array<char, 200> buffer{};
  EXPECT_EQ(std::string(buffer.data(), static_cast<std::size_t>(read(output[0], buffer.data(), buffer.size()))),
            "{\"good\":1}\n");
  EXPECT_EQ(std::string(buffer.data(), static_cast<std::size_t>(read(diagnostics[0], buffer.data(), buffer.size()))),
            "orvane-mcp: failed to serialize response\n");
  for (const int end : {output[0], output[1], diagnostics[0], diagnostics[1]}) close(end);
}

/// Writes a long message and a short one to a pipe that is read slowly, and gives what arrives.
std::string readSlowly(bool isNonBlocking) {
  std::array<int, 2> ends{};
  EXPECT_EQ(pipe(ends.data()), 0);
  EXPECT_EQ(fcntl(ends[1], F_SETFL, isNonBlocking ? O_NONBLOCK : 0), 0);
  std::string received;
  std::thread reader([&] {
    std::array<char, 30000> buffer{};
    ssize_t count = 0;
    while ((count = read(ends[0], buffer.data(), buffer.size())) > 0) {
      received.append(buffer.data(), static_cast<std::size_t>(count));
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  });
  {
    Server server(fullRegistry(), -1, ends[1], -1);
    server.writeMessage(JSON::Array{std::string(2 * mebibyte, 'x')});
    server.writeMessage(JSON::Array{1});
    server.handleLine(R"({"id":1,"method":"tools/list"})");
  }
  close(ends[1]);
  reader.join();
  close(ends[0]);
  return received;
}

TEST(WriteMessageTest, ASlowReaderGetsAllOfIt) {
  for (const bool isNonBlocking : {false, true}) {
    const std::string received = readSlowly(isNonBlocking);
    const std::string expected = "[\"" + std::string(2 * mebibyte, 'x') + "\"]\n[1]\n";
    ASSERT_TRUE(received.starts_with(expected)) << isNonBlocking;
    EXPECT_EQ(parsedObject(received.substr(expected.size())).size(), 3U);
    EXPECT_EQ(received.back(), '\n');
  }
}

}  // namespace
}  // namespace orvane::test
