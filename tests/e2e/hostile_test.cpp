// Peers that mean harm or know no better, on either side: the program stays in order, answers each request once, and
// keeps no descriptor.
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>

#include "tests/support/scripted_application.h"
#include "tests/support/server_test.h"

namespace orvane::test {
namespace {

const std::string answer = R"({"ok":true,"result":{"n":1}})";

class HostileTest : public ServerTest {
 protected:
  static int errorCode(const Json& response) {
    const Json* error = response.get_object().if_contains("error");
    return error == nullptr ? 0 : static_cast<int>(error->at("code").as_int64());
  }
};

TEST_F(HostileTest, AnApplicationThatTricklesItsAnswer) {
  const ScriptedApplication application(home_.socketPath(), [](Connection& connection) {
    connection.readToEnd();
    for (const char byte : answer) {
      connection.send({&byte, 1});
      usleep(10000);
    }
  });
  auto server = start();
  EXPECT_EQ(toolResult(server->request(toolCall("get_insights"))), parseJson(R"({"n":1})"));
  expectCleanEnd(*server);
}

// The answer comes before the request is whole. Whether the program still gets to see it depends on who is quicker.
TEST_F(HostileTest, AnApplicationThatAnswersBeforeItHasRead) {
  const ScriptedApplication application(home_.socketPath(), [](Connection& connection) {
    connection.send(answer);
    EXPECT_EQ(connection.readSome(1), "{");
  });
  auto server = start();
  for (int round = 0; round < 50; ++round) {
    const std::string big(round % 2 == 0 ? 900000 : 10, 'b');
    const Json response = server->request(toolCall("get_insights", R"({"v":")" + big + "\"}"));
    EXPECT_EQ(response.at("id"), Json(1));
    EXPECT_EQ(errorCode(response), -32000);
  }
  expectCleanEnd(*server);
}

TEST_F(HostileTest, AnApplicationThatAnswersInFullAndReadsLater) {
  const ScriptedApplication application(home_.socketPath(), [](Connection& connection) {
    connection.send(answer);
    shutdown(connection.descriptor(), SHUT_WR);
    connection.readToEnd();
  });
  auto server = start();
  const std::string big(900000, 'b');
  EXPECT_EQ(toolResult(server->request(toolCall("get_insights", R"({"v":")" + big + "\"}"))), parseJson(R"({"n":1})"));
  expectCleanEnd(*server);
}

TEST_F(HostileTest, AnApplicationThatFloods) {
  const ScriptedApplication application(home_.socketPath(), [](Connection& connection) {
    connection.readToEnd();
    const std::string flood(65536, '[');
    while (connection.send(flood)) {
    }
  });
  auto server = start();
  server->request(toolCall("get_insights"));
  const std::size_t before = server->openDescriptorCount();
  for (int round = 0; round < 50; ++round) {
    expectError(server->request(toolCall("get_insights")), 1, -32000, "response too large (>1 MiB)");
  }
  EXPECT_EQ(server->openDescriptorCount(), before);
  expectCleanEnd(*server);
}

// The application goes away after every number of bytes of the request, and after every number of bytes of its answer.
TEST_F(HostileTest, AnApplicationThatBreaksOffAtEveryPoint) {
  const std::string line = toolCall("get_insights", R"({"a":"b"})");
  std::atomic<std::size_t> requestBytes = 0;
  std::atomic<std::size_t> answerBytes = 0;
  const ScriptedApplication application(home_.socketPath(), [&](Connection& connection) {
    while (connection.received().size() < requestBytes && !connection.readSome(1).empty()) {
    }
    connection.send(answer.substr(0, answerBytes));
  });
  auto server = start();

  // The first answer shows how long the whole request is. Of a request that is not read whole, the system tells the
  // program.
  requestBytes = 100000;
  ASSERT_EQ(errorCode(server->request(line)), -32002);
  const std::size_t before = server->openDescriptorCount();
  const std::size_t wholeRequest = application.requests().back().size();
  for (requestBytes = 0; requestBytes < wholeRequest; ++requestBytes) {
    EXPECT_EQ(errorCode(server->request(line)), -32000) << requestBytes.load() << " bytes of the request";
  }
  requestBytes = 100000;
  for (answerBytes = 0; answerBytes < answer.size(); ++answerBytes) {
    EXPECT_EQ(errorCode(server->request(line)), -32002) << answerBytes.load() << " bytes of the answer";
  }
  EXPECT_EQ(toolResult(server->request(line)), parseJson(R"({"n":1})"));
  EXPECT_EQ(server->openDescriptorCount(), before);
  expectCleanEnd(*server);
}

TEST_F(HostileTest, AnApplicationThatIsRestartedAThousandTimes) {
  auto server = start();
  ASSERT_EQ(errorCode(server->request(toolCall("get_insights"))), -32001);
  const std::size_t before = server->openDescriptorCount();
  for (int round = 0; round < 1000; ++round) {
    {
      const ScriptedApplication application(home_.socketPath(), answerWith(answer));
      ASSERT_EQ(errorCode(server->request(toolCall("get_insights"))), 0) << round;
    }
    // Every other time the socket file is left behind, as by a crash.
    if (round % 2 == 0) unlink(home_.socketPath().c_str());
    ASSERT_EQ(errorCode(server->request(toolCall("get_insights"))), -32001) << round;
  }
  EXPECT_EQ(server->openDescriptorCount(), before);
  expectCleanEnd(*server);
}

// What has arrived counts as a line: whole or not, it is answered, and the program ends.
TEST_F(HostileTest, AClientThatVanishesAtEveryPointOfALine) {
  const std::string line = R"({"jsonrpc":"2.0","id":1,"method":"ping"})";
  for (std::size_t length = 0; length <= line.size(); ++length) {
    auto server = start();
    server->send(line.substr(0, length));
    const std::vector<std::string> lines = server->finish();
    const int status = server->wait();
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << length;
    ASSERT_EQ(lines.size(), length == 0 ? 0U : 1U) << length;
    if (length == 0) continue;
    EXPECT_EQ(errorCode(parseJson(lines[0])), length == line.size() ? 0 : -32700) << length;
  }
}

TEST_F(HostileTest, AClientThatVanishesInTheMiddleOfAnAnswer) {
  for (const bool socketPairs : {false, true}) {
    Launch launch;
    launch.socketPairs = socketPairs;
    auto server = start(launch);
    server->send(R"({"id":")" + std::string(1000000, 'i') + "\",\"method\":\"ping\"}\n");
    const auto deadline = deadlineAfter(defaultPatience);
    while (server->pendingOutput() < 65536 && std::chrono::steady_clock::now() < deadline) usleep(1000);
    server->closeOutput();
    const int status = server->wait();
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGPIPE) << "wait status " << status;
  }
}

TEST_F(HostileTest, AHundredThousandRequestsInOneBurst) {
  auto server = start();
  expectPong(*server);
  const std::size_t before = server->openDescriptorCount();
  constexpr int count = 100000;
  std::string burst;
  for (int id = 0; id < count; ++id) {
    burst += R"({"jsonrpc":"2.0","id":)" + std::to_string(id) + ",\"method\":\"ping\"}\n";
  }
  server->send(burst);
  for (int id = 0; id < count; ++id) {
    const std::optional<std::string> line = server->readLine();
    ASSERT_EQ(line, R"({"jsonrpc":"2.0","id":)" + std::to_string(id) + R"(,"result":{}})");
  }
  EXPECT_EQ(server->openDescriptorCount(), before);
  expectCleanEnd(*server);
}

}  // namespace
}  // namespace orvane::test
