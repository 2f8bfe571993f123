// Clients that mean harm or know no better: the program stays in order, answers each request once, keeps neither
// descriptors nor memory, and ends by a rule.
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <future>
#include <string>

#include "tests/support/attack.h"
#include "tests/support/scripted_application.h"
#include "tests/support/server_test.h"

namespace orvane::test {
namespace {

class HostileClientTest : public ServerTest {};

// What has arrived counts as a line: whole or not, it is answered, and the program ends.
TEST_F(HostileClientTest, AClientThatVanishesAtEveryPointOfALine) {
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

TEST_F(HostileClientTest, AClientThatVanishesInTheMiddleOfAnAnswer) {
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

TEST_F(HostileClientTest, AHundredThousandRequestsInOneBurst) {
  auto server = start();
  const auto exchange = [&](int count) {
    std::string burst;
    for (int id = 0; id < count; ++id) {
      burst += R"({"jsonrpc":"2.0","id":)" + std::to_string(id) + ",\"method\":\"ping\"}\n";
    }
    server->send(burst);
    for (int id = 0; id < count; ++id) {
      const std::optional<std::string> line = server->readLine();
      ASSERT_EQ(line, R"({"jsonrpc":"2.0","id":)" + std::to_string(id) + R"(,"result":{}})");
    }
  };
  constexpr int count = 100000;
  exchange(count / 10);
  Attack attack(*server, "sends 100,000 requests in one burst");
  exchange(count);
  attack.countAnswers(count);
  attack.expectNothingKept();
  expectCleanEnd(*server);
}

TEST_F(HostileClientTest, AClientThatSendsWhatNobodyCanUse) {
  auto server = start();
  const std::string oversize(1048577, 'x');
  const std::string deep = R"({"id":1,"params":)" + std::string(100000, '[') + std::string(100000, ']') + "}";
  const auto send = [&](Attack& attack) {
    server->send(oversize + "\n\xff\n\n");
    expectError(attack.request(deep), nullptr, -32600, "Request exceeds max depth");
    expectError(attack.request(std::string(1048576, '[')), nullptr, -32700, "Parse error");
    expectError(attack.request(R"({"id":1,"method":"none"})"), 1, -32601, "Method not found: none");
  };
  Attack first(*server, "the same, once");
  send(first);
  Attack attack(*server, "sends what nobody can use");
  constexpr int rounds = 50;
  for (int round = 0; round < rounds; ++round) send(attack);
  attack.expectNothingKept();
  std::string diagnostics;
  for (int round = 0; round <= rounds; ++round) diagnostics += "orvane-mcp: dropped oversize line (>1048576 bytes)\n";
  expectCleanEnd(*server, diagnostics);
}

// One byte, a pause, the next one: the program waits and does nothing.
TEST_F(HostileClientTest, AClientThatPausesAfterEveryByte) {
  constexpr std::chrono::milliseconds pause(20);
  for (const bool socketPairs : {false, true}) {
    Launch launch;
    launch.socketPairs = socketPairs;
    auto server = start(launch);
    expectPong(*server);
    const std::string line = R"({"jsonrpc":"2.0","id":7,"method":"ping"})";
    const auto before = server->processorTime();
    for (const char byte : line + "\n") {
      EXPECT_EQ(server->pendingOutput(), 0);
      server->send({&byte, 1});
      usleep(static_cast<useconds_t>(std::chrono::microseconds(pause).count()));
    }
    const auto taken = server->processorTime() - before;
    EXPECT_EQ(server->readLine(), R"({"jsonrpc":"2.0","id":7,"result":{}})");
    // Whoever asks again and again whether there is more takes all of the time.
    EXPECT_LT(taken, pause * line.size() / 10);
    expectCleanEnd(*server);
  }
}

// An application that holds its answer back until the client has done its worst.
class LateAnswer {
 public:
  explicit LateAnswer(const std::string& path)
      : application_(path, [this](Connection& connection) {
          connection.readToEnd();
          arrived_.set_value();
          goOn_.get_future().wait();
          EXPECT_TRUE(connection.send(R"({"ok":true,"result":{"n":1}})")) << "the program is no longer there";
        }) {}

  /// Waits until the program has sent its request.
  void awaitRequest() { ASSERT_EQ(arrived_.get_future().wait_for(defaultPatience), std::future_status::ready); }
  void answer() { goOn_.set_value(); }

 private:
  std::promise<void> arrived_;
  std::promise<void> goOn_;
  ScriptedApplication application_;
};

class HostileClientDuringACallTest : public HostileClientTest {
 protected:
  // A server whose call has reached the application.
  std::unique_ptr<ServerProcess> startWithCallTo(LateAnswer& application, bool socketPairs) {
    Launch launch;
    launch.socketPairs = socketPairs;
    auto server = start(launch);
    server->send(toolCall("get_insights") + "\n");
    application.awaitRequest();
    return server;
  }
};

// The end of the input is noticed after the call that is under way: it is answered.
TEST_F(HostileClientDuringACallTest, AClientThatEndsItsInput) {
  for (const bool socketPairs : {false, true}) {
    LateAnswer application(home_.socketPath());
    const auto server = startWithCallTo(application, socketPairs);
    server->closeInput();
    application.answer();
    EXPECT_EQ(toolResult(parseJson(server->readLine().value_or("null"))), parseJson(R"({"n":1})"));
    expectCleanEnd(*server);
  }
}

// Nobody is there to be answered: the program learns that when it tries.
TEST_F(HostileClientDuringACallTest, AClientThatVanishes) {
  for (const bool socketPairs : {false, true}) {
    LateAnswer application(home_.socketPath());
    const auto server = startWithCallTo(application, socketPairs);
    server->closeInput();
    server->closeOutput();
    application.answer();
    const int status = server->wait();
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGPIPE) << "wait status " << status;
    EXPECT_EQ(server->standardError(), "");
  }
}

}  // namespace
}  // namespace orvane::test
