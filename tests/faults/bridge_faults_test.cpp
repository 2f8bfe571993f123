// The call to the application, where the system fails it at one point.
#include <unistd.h>

#include <cerrno>

#include "tests/support/scripted_application.h"
#include "tests/support/server_test.h"

namespace orvane::test {
namespace {

class BridgeFaultTest : public ServerTest {
 protected:
  struct Exchange {
    Json answer;
    std::vector<std::string> received;  ///< by the application, a text for each connection
  };

  Exchange callWith(const std::string& faults) {
    Exchange exchange;
    {
      // By its end it has dealt with everybody.
      const ScriptedApplication application(home_.socketPath(), [&](Connection& connection) {
        exchange.received.push_back(connection.readToEnd());
        connection.send("{\"ok\":true}\n");
      });
      Launch launch;
      launch.preload = {ORVANE_FAULT_LIBRARY};
      launch.environment = {"FAULTS=" + faults};
      auto server = start(launch);
      exchange.answer = server->request(toolCall("get_insights"));
      expectPong(*server);
      expectCleanEnd(*server);
    }
    return exchange;
  }
};

TEST_F(BridgeFaultTest, WhereThePeerCannotBeToldNothingIsSent) {
  const auto [answer, received] = callWith("getsockopt:1-:" + std::to_string(EIO));
  expectError(answer, 1, -32000, "getpeereid() failed: Input/output error (errno 5)");
  EXPECT_EQ(received, std::vector<std::string>{""});
}

// A socket that takes nothing and reports no error would otherwise be tried for ever.
TEST_F(BridgeFaultTest, ASendThatTakesNothingIsAFailure) {
  const auto [answer, received] = callWith("send:1-:nothing");
  expectError(answer, 1, -32000, "write() returned 0 (peer closed?)");
  EXPECT_EQ(received, std::vector<std::string>{""});
}

// Who the user is does not change with the rights that the process has at the moment.
TEST_F(BridgeFaultTest, ThePeerIsComparedWithTheUserWhoStartedTheProgram) {
  const auto [answer, received] = callWith("geteuid:1-:" + std::to_string(getuid() + 1));
  EXPECT_EQ(toolResult(answer), parseJson("{}"));
  EXPECT_EQ(received.size(), 1U);
}

}  // namespace
}  // namespace orvane::test
