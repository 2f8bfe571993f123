// How lines are taken from standard input and written to standard output.
#include <sys/wait.h>

#include <csignal>
#include <future>

#include "tests/support/scripted_application.h"
#include "tests/support/server_test.h"

namespace orvane::test {
namespace {

constexpr std::size_t lineLimit = 1048576;
const std::string oversizeDiagnostic = "orvane-mcp: dropped oversize line (>1048576 bytes)\n";

// A ping whose line has exactly `bytes` bytes; the filling consists of copies of `unit`.
std::string pingOfSize(std::size_t bytes, const std::string& unit = "x") {
  const std::string head = R"({"jsonrpc":"2.0","id":5,"method":"ping","filling":")";
  std::string line = head;
  while (line.size() + unit.size() + 2 <= bytes) {
    line += unit;
  }
  line += "\"}";
  line.append(bytes - line.size(), ' ');
  return line;
}

const Json pingAnswer = parseJson(R"({"jsonrpc":"2.0","id":5,"result":{}})");
const std::string ping = R"({"jsonrpc":"2.0","id":5,"method":"ping"})";

class TransportTest : public ServerTest {};

TEST_F(TransportTest, ALineOfTheLimitIsTaken) {
  auto server = start();
  EXPECT_EQ(server->request(pingOfSize(lineLimit)), pingAnswer);
  EXPECT_EQ(server->request(pingOfSize(lineLimit, "\xf0\x9f\x8e\x99")), pingAnswer);
  expectCleanEnd(*server);
}

TEST_F(TransportTest, OneByteMoreIsDroppedWithOneDiagnostic) {
  auto server = start();
  server->send(pingOfSize(lineLimit + 1) + "\n");
  EXPECT_EQ(server->request(ping), pingAnswer);
  // Fewer characters than the limit, and yet more bytes.
  server->send(pingOfSize(lineLimit + 1, "\xc3\xa9") + "\n");
  EXPECT_EQ(server->request(ping), pingAnswer);
  expectCleanEnd(*server, oversizeDiagnostic + oversizeDiagnostic);
}

TEST_F(TransportTest, TheCarriageReturnCounts) {
  auto server = start();
  EXPECT_EQ(server->request(pingOfSize(lineLimit - 1) + "\r"), pingAnswer);
  server->send(pingOfSize(lineLimit) + "\r\n");
  expectPong(*server);
  expectCleanEnd(*server, oversizeDiagnostic);
}

TEST_F(TransportTest, WhatFollowsAnOverflowIsNeverUsed) {
  auto server = start();
  // The byte that overflows is dropped, so that the rest of this line is a request of its own.
  server->send(std::string(lineLimit + 1, ' ') + ping + "\n");
  // The buffer overflows twice and more.
  server->send(std::string(3 * lineLimit + 2, 'y') + "\n");
  server->send(std::string(2 * lineLimit + 1, ' ') + ping + "\n");
  expectPong(*server);
  expectCleanEnd(*server, oversizeDiagnostic + oversizeDiagnostic + oversizeDiagnostic);
}

TEST_F(TransportTest, AnOversizeLastLineIsDroppedSilently) {
  for (const std::size_t size : {lineLimit + 1, lineLimit + 2, 2 * lineLimit + 1, 2 * lineLimit + 500}) {
    auto server = start();
    server->send(std::string(size, ' '));
    expectCleanEnd(*server);
  }
  auto server = start();
  server->send(std::string(lineLimit + 1, ' ') + ping);
  expectCleanEnd(*server);
}

TEST_F(TransportTest, CarriageReturnsAndBlankLines) {
  auto server = start();
  server->send("\n\n\n");
  EXPECT_EQ(server->request(ping + "\r"), pingAnswer);
  server->send("\n");
  EXPECT_EQ(server->request(" \t" + ping + " \t\r"), pingAnswer);
  expectError(server->request("\r"), nullptr, -32700, "Parse error");
  expectError(server->request(" "), nullptr, -32700, "Parse error");
  expectCleanEnd(*server);
}

TEST_F(TransportTest, NulIsAnOrdinaryByte) {
  auto server = start();
  expectError(server->request(std::string("\0", 1)), nullptr, -32700, "Parse error");
  expectError(server->request(ping + std::string("\0", 1)), nullptr, -32700, "Parse error");
  expectError(server->request(std::string("{\"id\":\"a\0b\",\"method\":\"ping\"}", 28)), nullptr, -32700,
              "Parse error");
  expectPong(*server);
  expectCleanEnd(*server);
}

TEST_F(TransportTest, WhatIsNotUTF8IsDroppedSilently) {
  auto server = start();
  for (const char* bytes :
       {"\xff", "\xfe", "\x80", "\xc3", "\xed\xa0\x80", "\xed\xbf\xbf", "\xed\xa0\xbd\xed\xb8\x80", "\xc0\x80",
        "\xc1\xbf", "\xe0\x80\x80", "\xe0\x9f\xbf", "\xf0\x80\x80\x80", "\xf0\x8f\xbf\xbf", "\xf4\x90\x80\x80",
        "\xf5\x80\x80\x80", "\xe2\x82", "\xf0\x9f\x8e", "\xf8\x88\x80\x80\x80", "\xc3\x28"}) {
    server->send(std::string(R"({"jsonrpc":"2.0","id":")") + bytes + R"(","method":"ping"})" + "\n");
    server->send(std::string(bytes) + "\n");
    expectPong(*server);
  }
  for (const char* id :
       {"\xef\xbf\xbf", "\xee\x80\x80", "\xed\x9f\xbf", "\xf4\x8f\xbf\xbf", "\xef\xbb\xbf", "\xc2\x80"}) {
    const Json answer = server->request(std::string(R"({"id":")") + id + R"(","method":"ping"})");
    EXPECT_EQ(answer.at("id"), Json(id));
  }
  expectCleanEnd(*server);
}

TEST_F(TransportTest, AnUnterminatedLastLineIsAnswered) {
  auto server = start();
  server->send(ping);
  const std::vector<std::string> rest = server->finish();
  ASSERT_EQ(rest.size(), 1U);
  EXPECT_EQ(parseJson(rest[0]), pingAnswer);
  expectCleanEnd(*server);
}

TEST_F(TransportTest, AnUnterminatedLastLineThatIsNotUTF8EndsSilently) {
  auto server = start();
  server->send(ping + "\n" + ping + "\xff");
  const std::vector<std::string> rest = server->finish();
  EXPECT_EQ(rest.size(), 1U);
  expectCleanEnd(*server);
}

TEST_F(TransportTest, ABurstIsAnsweredInOrder) {
  auto server = start();
  std::string burst;
  for (int id = 0; id < 200; ++id) {
    burst += "{\"id\":" + std::to_string(id) + ",\"method\":\"ping\"}\n";
  }
  server->send(burst);
  const std::vector<std::string> answers = server->finish();
  ASSERT_EQ(answers.size(), 200U);
  for (int id = 0; id < 200; ++id) {
    EXPECT_EQ(parseJson(answers[static_cast<std::size_t>(id)]).at("id"), Json(id));
  }
}

TEST_F(TransportTest, SlashesAndTextAreWrittenAsTheyAre) {
  auto server = start();
  server->send("{\"id\":\"a/b\\/c \xc3\xa9\",\"method\":\"ping\"}\n");
  const std::string line = server->readLine().value_or("");
  EXPECT_NE(line.find("\"a/b/c \xc3\xa9\""), std::string::npos) << line;
  expectCleanEnd(*server);
}

// A response of nearly 1 MiB to a client that reads late, over channels as hosts leave them.
class SlowReaderTest : public ServerTest, public ::testing::WithParamInterface<std::pair<bool, bool>> {};

TEST_P(SlowReaderTest, TheWholeResponseArrives) {
  Launch launch;
  launch.socketPairs = GetParam().first;
  launch.nonBlocking = GetParam().second;
  auto server = start(launch);
  expectPong(*server);
  const std::string id(lineLimit - 100, 'i');
  for (int round = 0; round < 2; ++round) {
    server->send("{\"id\":\"" + id + "\",\"method\":\"ping\"}\n");
    const auto deadline = deadlineAfter(defaultPatience);
    while (server->pendingOutput() < 65536 && std::chrono::steady_clock::now() < deadline) {
      usleep(1000);
    }
    EXPECT_GE(server->pendingOutput(), 65536);
    const std::string line = server->readLine().value_or("null");
    EXPECT_EQ(parseJson(line).at("id").as_string().size(), id.size());
  }
  expectPong(*server);
  expectCleanEnd(*server);
}

TEST_P(SlowReaderTest, ARequestMayArriveByteByByte) {
  Launch launch;
  launch.socketPairs = GetParam().first;
  launch.nonBlocking = GetParam().second;
  auto server = start(launch);
  for (const char byte : ping + "\n") {
    server->send(std::string(1, byte));
    const auto deadline = deadlineAfter(defaultPatience);
    while (server->unreadInput() > 0 && std::chrono::steady_clock::now() < deadline) {
      usleep(200);
    }
  }
  EXPECT_EQ(parseJson(server->readLine().value_or("null")), pingAnswer);
  expectCleanEnd(*server);
}

TEST_P(SlowReaderTest, NothingBeyondTheLineIsTaken) {
  std::promise<void> arrived;
  std::promise<void> goOn;
  const ScriptedApplication application(home_.socketPath(), [&](Connection& connection) {
    connection.readToEnd();
    arrived.set_value();
    goOn.get_future().wait();
    connection.send("{\"ok\":true,\"result\":{}}\n");
  });
  Launch launch;
  launch.socketPairs = GetParam().first;
  launch.nonBlocking = GetParam().second;
  auto server = start(launch);
  const std::string next = ping + "\n" + pingOfSize(5000) + "\n";
  server->send(toolCall("get_insights") + "\n" + next);
  ASSERT_EQ(arrived.get_future().wait_for(defaultPatience), std::future_status::ready);
  EXPECT_EQ(server->unreadInput(), static_cast<int>(next.size()));
  goOn.set_value();
  EXPECT_EQ(toolResult(parseJson(server->readLine().value_or("null"))), parseJson("{}"));
  EXPECT_EQ(server->finish().size(), 2U);
  expectCleanEnd(*server);
}

INSTANTIATE_TEST_SUITE_P(Channels, SlowReaderTest,
                         ::testing::Values(std::pair(false, false), std::pair(false, true), std::pair(true, false),
                                           std::pair(true, true)));

TEST_F(TransportTest, AClientThatIsGoneEndsTheProgramByTheDefaultSignal) {
  auto server = start();
  expectPong(*server);
  server->closeOutput();
  server->send(ping + "\n");
  const int status = server->wait();
  EXPECT_TRUE(WIFSIGNALED(status)) << "wait status " << status;
  EXPECT_EQ(WTERMSIG(status), SIGPIPE);
}

TEST_F(TransportTest, TheExitStatusIsZeroWhateverCameBefore) {
  auto server = start();
  expectError(server->request("nonsense"), nullptr, -32700, "Parse error");
  server->send("\xff\n" + std::string(lineLimit + 1, 'z') + "\n");
  expectError(server->request(R"({"id":9,"method":"none"})"), 9, -32601, "Method not found: none");
  expectCleanEnd(*server, oversizeDiagnostic);
}

}  // namespace
}  // namespace orvane::test
