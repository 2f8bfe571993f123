// Applications that mean harm or know no better: the program stays in order, answers each request once, and keeps
// neither descriptors nor memory.
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <string>

#include "tests/support/attack.h"
#include "tests/support/scripted_application.h"
#include "tests/support/server_test.h"

namespace orvane::test {
namespace {

const std::string answer = R"({"ok":true,"result":{"n":1}})";

class HostileApplicationTest : public ServerTest {};

TEST_F(HostileApplicationTest, AnApplicationThatTricklesItsAnswer) {
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
TEST_F(HostileApplicationTest, AnApplicationThatAnswersBeforeItHasRead) {
  const ScriptedApplication application(home_.socketPath(), [](Connection& connection) {
    connection.send(answer);
    EXPECT_EQ(connection.readSome(1), "{");
  });
  auto server = start();
  const std::string big = toolCall("get_insights", R"({"v":")" + std::string(900000, 'b') + "\"}");
  const std::string small = toolCall("get_insights", R"({"v":"b"})");
  for (const std::string& line : {big, small, big, small}) server->request(line);
  Attack attack(*server, "answers before it has read");
  for (int round = 0; round < 50; ++round) {
    const Json response = attack.request(round % 2 == 0 ? big : small);
    EXPECT_EQ(response.at("id"), Json(1));
    EXPECT_EQ(errorCode(response), -32000);
  }
  attack.expectNothingKept();
  expectCleanEnd(*server);
}

TEST_F(HostileApplicationTest, AnApplicationThatAnswersInFullAndReadsLater) {
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

TEST_F(HostileApplicationTest, AnApplicationThatFloods) {
  const ScriptedApplication application(home_.socketPath(), [](Connection& connection) {
    connection.readToEnd();
    const std::string flood(65536, '[');
    while (connection.send(flood)) {
    }
  });
  auto server = start();
  server->request(toolCall("get_insights"));
  Attack attack(*server, "floods");
  for (int round = 0; round < 50; ++round) {
    expectError(attack.request(toolCall("get_insights")), 1, -32000, "response too large (>1 MiB)");
  }
  attack.expectNothingKept();
  expectCleanEnd(*server);
}

// The application goes away after every number of bytes of the request, and after every number of bytes of its answer.
TEST_F(HostileApplicationTest, AnApplicationThatBreaksOffAtEveryPoint) {
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
  Attack attack(*server, "breaks off at every point");
  const std::size_t wholeRequest = application.requests().back().size();
  for (requestBytes = 0; requestBytes < wholeRequest; ++requestBytes) {
    EXPECT_EQ(errorCode(attack.request(line)), -32000) << requestBytes.load() << " bytes of the request";
  }
  requestBytes = 100000;
  for (answerBytes = 0; answerBytes < answer.size(); ++answerBytes) {
    EXPECT_EQ(errorCode(attack.request(line)), -32002) << answerBytes.load() << " bytes of the answer";
  }
  EXPECT_EQ(toolResult(attack.request(line)), parseJson(R"({"n":1})"));
  attack.expectNothingKept();
  expectCleanEnd(*server);
}

TEST_F(HostileApplicationTest, AnApplicationThatIsRestartedAThousandTimes) {
  auto server = start();
  ASSERT_EQ(errorCode(server->request(toolCall("get_insights"))), -32001);
  Attack attack(*server, "is restarted 1,000 times");
  for (int round = 0; round < 1000; ++round) {
    {
      const ScriptedApplication application(home_.socketPath(), answerWith(answer));
      ASSERT_EQ(errorCode(attack.request(toolCall("get_insights"))), 0) << round;
    }
    // Every other time the socket file is left behind, as by a crash.
    if (round % 2 == 0) unlink(home_.socketPath().c_str());
    ASSERT_EQ(errorCode(attack.request(toolCall("get_insights"))), -32001) << round;
  }
  attack.expectNothingKept();
  expectCleanEnd(*server);
}

TEST_F(HostileApplicationTest, AnApplicationThatIsAwayAndOneThatTalksNonsense) {
  auto server = start();
  ASSERT_EQ(errorCode(server->request(toolCall("get_insights"))), -32001);
  Attack away(*server, "is away");
  for (int round = 0; round < 2000; ++round) {
    ASSERT_EQ(errorCode(away.request(toolCall("get_insights"))), -32001);
  }
  away.expectNothingKept();
  const ScriptedApplication application(home_.socketPath(), answerWith("nonsense"));
  ASSERT_EQ(errorCode(server->request(toolCall("get_insights"))), -32002);
  Attack nonsense(*server, "talks nonsense");
  for (int round = 0; round < 500; ++round) {
    ASSERT_EQ(errorCode(nonsense.request(toolCall("get_insights"))), -32002);
  }
  nonsense.expectNothingKept();
  EXPECT_EQ(application.requests().size(), 501U);
  expectCleanEnd(*server);
}

}  // namespace
}  // namespace orvane::test
