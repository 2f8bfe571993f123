// The connection to the application: nobody there, the wrong peer, limits and broken exchanges.
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>

#include "tests/support/file_content.h"
#include "tests/support/scripted_application.h"
#include "tests/support/server_test.h"

namespace orvane::test {
namespace {

const std::string notRunning = "Orvane app is not running \u2014 open the app and try again.";
constexpr std::size_t responseLimit = 1048576;

class BridgeConnectionTest : public ServerTest {
 protected:
  Json call(std::unique_ptr<ServerProcess>& server) { return server->request(toolCall("get_insights")); }

  Json callWith(ScriptedApplication::Script script) {
    const ScriptedApplication application(home_.socketPath(), std::move(script));
    auto server = start();
    Json response = call(server);
    expectPong(*server);
    expectCleanEnd(*server);
    EXPECT_EQ(application.connectionCount(), 1);
    return response;
  }
};

// An answer of exactly `bytes` bytes, the final line feed included.
const std::string answerHead = R"({"ok":true,"result":{"text":")";
const std::string answerTail = "\"}}\n";

std::string answerOfSize(std::size_t bytes) {
  return answerHead + std::string(bytes - answerHead.size() - answerTail.size(), 't') + answerTail;
}

TEST_F(BridgeConnectionTest, NobodyListens) {
  auto server = start();
  expectError(call(server), 1, -32001, notRunning);
  leaveStaleSocket(home_.socketPath());
  expectError(call(server), 1, -32001, notRunning);
  {
    const ScriptedApplication application(home_.socketPath(), answerWith("{\"ok\":true}\n"));
    EXPECT_EQ(toolResult(call(server)), parseJson("{}"));
  }
  expectError(call(server), 1, -32001, notRunning);
  expectCleanEnd(*server);
}

TEST_F(BridgeConnectionTest, OtherConnectFailuresNameTheirError) {
  writeFile(home_.path() + "/Library/Application Support/Orvane", "a file where a directory should be");
  auto server = start();
  expectError(call(server), 1, -32000, "connect() failed: Not a directory (errno 20)");
  expectCleanEnd(*server);
}

TEST_F(BridgeConnectionTest, APathOf103BytesIsTheLongest) {
  home_.moveToSocketPathLength(103);
  {
    const ScriptedApplication application(home_.socketPath(), answerWith("{\"ok\":true}\n"));
    auto server = start();
    EXPECT_EQ(toolResult(call(server)), parseJson("{}"));
    expectCleanEnd(*server);
  }
  home_.moveToSocketPathLength(104);
  const ScriptedApplication application(home_.socketPath(), answerWith("{\"ok\":true}\n"));
  auto server = start();
  expectError(call(server), 1, -32000, "socket path too long");
  expectCleanEnd(*server);
  EXPECT_TRUE(application.requests().empty());
}

TEST_F(BridgeConnectionTest, AnApplicationThatClosesAtOnce) {
  const Json response = callWith([](Connection& connection) {
    shutdown(connection.descriptor(), SHUT_WR);
    connection.readToEnd();
  });
  expectError(response, 1, -32002, "Malformed response from Orvane: response was not a JSON object");
}

TEST_F(BridgeConnectionTest, AnApplicationThatClosesUnreadIsAReset) {
  const Json response = callWith([](Connection& connection) {
    EXPECT_EQ(connection.readSome(1), "{");  // the rest of the request stays unread, so closing resets
  });
  expectError(response, 1, -32000, "read() failed: Connection reset by peer (errno 104)");
}

TEST_F(BridgeConnectionTest, AnApplicationThatTakesNoneOfABigRequest) {
  const ScriptedApplication application(home_.socketPath(),
                                        [](Connection& connection) { EXPECT_EQ(connection.readSome(1), "{"); });
  auto server = start();
  const std::string big(900000, 'b');
  const Json response = server->request(toolCall("slate_set_frontmatter", "{\"value\":\"" + big + "\"}"));
  EXPECT_EQ(response.at("error").at("code"), Json(-32000));
  const std::string message(response.at("error").at("message").as_string());
  EXPECT_TRUE(message == "write() failed: Broken pipe (errno 32)" ||
              message == "write() failed: Connection reset by peer (errno 104)")
      << message;
  expectPong(*server);
  expectCleanEnd(*server);
}

TEST_F(BridgeConnectionTest, ABigRequestArrivesWhole) {
  const ScriptedApplication application(home_.socketPath(), answerWith("{\"ok\":true}\n"));
  auto server = start();
  const std::string big(1048000, 'b');
  EXPECT_EQ(toolResult(server->request(toolCall("get_insights", "{\"v\":\"" + big + "\"}"))), parseJson("{}"));
  expectCleanEnd(*server);
  ASSERT_EQ(application.requests().size(), 1U);
  EXPECT_EQ(parseJson(application.requests()[0]).at("args").at("v").as_string().size(), big.size());
}

TEST_F(BridgeConnectionTest, ResponsesUpToTheLimit) {
  for (const std::size_t size : {responseLimit - 1, responseLimit}) {
    const Json result = toolResult(callWith(answerWith(answerOfSize(size))));
    EXPECT_EQ(result.at("text").as_string().size(), size - answerHead.size() - answerTail.size());
  }
  for (const std::size_t size : {responseLimit + 1, responseLimit + 4096, 3 * responseLimit}) {
    expectError(callWith(answerWith(answerOfSize(size))), 1, -32000, "response too large (>1 MiB)");
  }
}

TEST_F(BridgeConnectionTest, TheLimitStrikesWithoutWaitingForTheEnd) {
  const Json response = callWith([](Connection& connection) {
    connection.readToEnd();
    connection.send(std::string(2 * responseLimit, ' '));
    char none = 0;
    EXPECT_LE(read(connection.descriptor(), &none, 1), 0);  // returns once the program has closed its side
  });
  expectError(response, 1, -32000, "response too large (>1 MiB)");
}

TEST_F(BridgeConnectionTest, AResponseInManyPieces) {
  const Json response = callWith([](Connection& connection) {
    connection.readToEnd();
    for (const char byte : std::string("{\"ok\":true,\"result\":{\"a\":[1,2]}}\n")) connection.send({&byte, 1});
  });
  EXPECT_EQ(toolResult(response), parseJson(R"({"a":[1,2]})"));
}

// Neither a whole response nor a line feed ends the answer; only the application does.
TEST_F(BridgeConnectionTest, TheAnswerIsReadToItsEnd) {
  const auto inTwoPieces = [this](const std::string& first, const std::string& second) {
    return callWith([=](Connection& connection) {
      connection.readToEnd();
      connection.send(first);
      usleep(100000);
      connection.send(second);
    });
  };
  expectError(inTwoPieces("{\"ok\":true}\n", "x"), 1, -32002,
              "Malformed response from Orvane: response was not a JSON object");
  EXPECT_EQ(toolResult(inTwoPieces("{\"ok\":true,\n", "\"result\":[1]}\n")), parseJson("[1]"));
}

// Blanks of an indentation that grew with every level would make gigabytes of a megabyte.
TEST_F(BridgeConnectionTest, ADeepAnswerDoesNotSwell) {
  std::string ones;
  while (ones.size() < 1000000) ones += "1,";
  const std::string deep = std::string(500, '[') + ones + "1" + std::string(500, ']');
  const ScriptedApplication application(home_.socketPath(), answerWith(R"({"ok":true,"result":)" + deep + "}"));
  auto server = start();
  server->send(toolCall("get_insights") + "\n");
  const std::optional<std::string> answer = server->readLine();
  ASSERT_TRUE(answer.has_value());
  EXPECT_LT(answer->size(), 20U * deep.size());
  expectCleanEnd(*server);
}

// The listener becomes another user before it listens, which is what the peer's identity is taken from.
TEST_F(BridgeConnectionTest, AnotherUsersListenerIsRefusedBeforeAnythingIsSent) {
  if (getuid() != 0) GTEST_SKIP() << "only root can put another user's listener in place";
  const int listener = boundSocket(home_.socketPath());
  std::array<int, 2> result{};
  ASSERT_EQ(pipe(result.data()), 0);
  const pid_t peer = fork();
  if (peer == 0) {
    if (setgid(65534) != 0 || setuid(65534) != 0 || listen(listener, 1) != 0) {
      _exit(1);
    }
    char ready = 'r';
    if (write(result[1], &ready, 1) != 1) {
      _exit(1);
    }
    const int connection = accept(listener, nullptr, nullptr);
    std::array<char, 64> bytes;
    const ssize_t received = read(connection, bytes.data(), bytes.size());
    const char seen = received == 0 ? '0' : 'x';
    _exit(write(result[1], &seen, 1) == 1 ? 0 : 1);
  }
  close(result[1]);
  char mark = 0;
  ASSERT_EQ(read(result[0], &mark, 1), 1);
  auto server = start();
  expectError(call(server), 1, -32015,
              "Refusing to talk to MCP server: peer uid 65534 does not match this user's uid 0.");
  ASSERT_EQ(read(result[0], &mark, 1), 1);
  EXPECT_EQ(mark, '0') << "something was sent to another user's listener";
  expectPong(*server);
  expectCleanEnd(*server);
  int status = -1;
  waitpid(peer, &status, 0);
  EXPECT_EQ(status, 0);
  close(result[0]);
  close(listener);
}

}  // namespace
}  // namespace orvane::test
