// Every way in which the connection itself can fail, and every limit: one below, at, one above.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <future>
#include <string>
#include <thread>

#include "protocol/mcp_socket_path.h"
#include "tests/support/bridge_call.h"
#include "tests/support/fake_platform.h"
#include "tests/support/file_content.h"
#include "tests/support/json_text.h"

namespace orvane::test {
namespace {

class AppBridgeLimitsTest : public testing::Test {
 protected:
  /// Moves the socket to a path of `length` bytes, part of them in two-byte characters.
  void setPathLength(std::size_t length) {
    const std::string rest = "/Orvane/mcp.sock";
    std::string support = home_.file("\xC3\xA9\xC3\xA9\xC3\xA9");
    support.append(length - rest.size() - support.size(), 'x');
    fakePlatform().applicationSupport = support;
    ASSERT_EQ(MCPSocketPath::resolve().size(), length);
  }

  FakeHome home_;
};

TEST_F(AppBridgeLimitsTest, NobodyListeningMeansNotRunning) {
  EXPECT_EQ(outcomeOfCall(), notRunning) << "no directory";
  std::filesystem::create_directories(std::filesystem::path(MCPSocketPath::resolve()).parent_path());
  EXPECT_EQ(outcomeOfCall(), notRunning) << "no socket file";
  leaveStaleSocket(MCPSocketPath::resolve());
  ASSERT_TRUE(std::filesystem::exists(MCPSocketPath::resolve()));
  EXPECT_EQ(outcomeOfCall(), notRunning) << "a stale socket file";
}

TEST_F(AppBridgeLimitsTest, OtherReasonsAgainstAConnectionAreTold) {
  writeFile(home_.file("Library/Application Support/Orvane"), "a file");
  EXPECT_EQ(outcomeOfCall(), failureOf("connect", ENOTDIR));
  const std::string loop = home_.file("loop");
  std::filesystem::create_symlink(loop, loop);
  fakePlatform().applicationSupport = loop;
  EXPECT_EQ(outcomeOfCall(), failureOf("connect", ELOOP));
}

TEST_F(AppBridgeLimitsTest, ThePathMayHave103Bytes) {
  for (const std::size_t length : {102U, 103U}) {
    setPathLength(length);
    const auto application = applicationAnswering(okResponse);
    EXPECT_EQ(outcomeOfCall(), "[1]") << length;
  }
  setPathLength(103);
  EXPECT_EQ(outcomeOfCall(), notRunning);
}

TEST_F(AppBridgeLimitsTest, ALongerPathIsRefusedWithoutAConnection) {
  setPathLength(104);
  const auto application = applicationAnswering(okResponse);
  EXPECT_EQ(outcomeOfCall(), "-32000 socket path too long no data");
  EXPECT_EQ(application.connectionCount(), 0);
}

TEST_F(AppBridgeLimitsTest, PathsFarBeyondTheLimitAreRefusedToo) {
  for (const std::size_t length : {105U, 107U, 108U, 109U, 4096U, 100000U}) {
    setPathLength(length);
    EXPECT_EQ(outcomeOfCall(), "-32000 socket path too long no data") << length;
  }
}

TEST_F(AppBridgeLimitsTest, WithoutADescriptorTheSocketFailsFirst) {
  setPathLength(104);
  // The sanitizer looks at the first error of a kind through a pipe of its own, so it has to see one beforehand.
  EXPECT_NE(outcomeOfCall(), "");
  rlimit before{};
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
  const int lowestFree = dup(0);
  close(lowestFree);
  const rlimit none{static_cast<rlim_t>(lowestFree), before.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
  const std::string outcome = outcomeOfCall();
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
  EXPECT_EQ(outcome, failureOf("socket", EMFILE));
}

TEST_F(AppBridgeLimitsTest, AnotherUsersPeerGetsNotOneByte) {
  const auto application = applicationAnswering(okResponse);
  fakePlatform().peer = platform::Peer{0, 4294967294U};
  EXPECT_EQ(outcomeOfCall(),
            "-32015 Refusing to talk to MCP server: peer uid 4294967294 does not match this user's uid " +
                std::to_string(getuid()) + ". no data");
  fakePlatform().peer = platform::Peer{0, getuid()};
  EXPECT_EQ(outcomeOfCall("second"), "[1]");
  ASSERT_EQ(application.requests().size(), 2U);
  EXPECT_EQ(application.requests()[0], "");
}

TEST_F(AppBridgeLimitsTest, APeerThatCannotBeKnownIsRefused) {
  const auto application = applicationAnswering(okResponse);
  // The uid is right; it must not count beside an error.
  fakePlatform().peer = platform::Peer{ENOTCONN, getuid()};
  EXPECT_EQ(outcomeOfCall(), failureOf("getpeereid", ENOTCONN));
  fakePlatform().peer.reset();
  EXPECT_EQ(outcomeOfCall("second"), "[1]");
  ASSERT_EQ(application.requests().size(), 2U);
  EXPECT_EQ(application.requests()[0], "");
}

TEST_F(AppBridgeLimitsTest, TheSocketHasItsTimeoutsAndIsNotInherited) {
  const auto application = applicationAnswering(okResponse);
  int lookups = 0;
  fakePlatform().onPeerLookup = [&](int socket) {
    ++lookups;
    for (const int option : {SO_RCVTIMEO, SO_SNDTIMEO}) {
      timeval timeout{};
      socklen_t length = sizeof timeout;
      ASSERT_EQ(getsockopt(socket, SOL_SOCKET, option, &timeout, &length), 0);
      EXPECT_EQ(timeout.tv_sec, 30);
      EXPECT_EQ(timeout.tv_usec, 0);
    }
    EXPECT_NE(fcntl(socket, F_GETFD) & FD_CLOEXEC, 0);
  };
  EXPECT_EQ(outcomeOfCall(), "[1]");
  EXPECT_EQ(lookups, 1);
}

/// Makes the bridge's time-outs short, so that a stalled peer is given up within the test.
void shortenTimeouts(int socket) {
  const timeval brief{0, 50000};
  setsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, &brief, sizeof brief);
  setsockopt(socket, SOL_SOCKET, SO_SNDTIMEO, &brief, sizeof brief);
}

TEST_F(AppBridgeLimitsTest, AStalledAnswerIsAReadFailure) {
  std::promise<void> isDone;
  auto whenDone = isDone.get_future().share();
  const auto application = applicationWith([whenDone](Connection& connection) {
    connection.readToEnd();
    connection.send("{\"ok\":true");
    whenDone.wait();
  });
  fakePlatform().onPeerLookup = shortenTimeouts;
  EXPECT_EQ(outcomeOfCall(), failureOf("read", EAGAIN));
  isDone.set_value();
  EXPECT_EQ(application.connectionCount(), 1);
}

TEST_F(AppBridgeLimitsTest, AStalledRequestIsAWriteFailure) {
  std::promise<void> isDone;
  auto whenDone = isDone.get_future().share();
  const auto application = applicationWith([whenDone](Connection&) { whenDone.wait(); });
  fakePlatform().onPeerLookup = shortenTimeouts;
  EXPECT_EQ(outcomeOfCall("m", {{"text", std::string(4 * mebibyte, 'x')}}), failureOf("write", EAGAIN));
  isDone.set_value();
  EXPECT_EQ(application.connectionCount(), 1);
}

TEST_F(AppBridgeLimitsTest, APeerThatIsGoneBeforeTheRequestIsAWriteFailureAndNoSignal) {
  std::atomic<bool> mayClose = false;
  const auto application = applicationWith([&](Connection&) {
    while (!mayClose) std::this_thread::yield();
  });
  fakePlatform().onPeerLookup = [&](int socket) {
    mayClose = true;
    pollfd hangUp{socket, 0, 0};
    poll(&hangUp, 1, 10000);
  };
  EXPECT_EQ(outcomeOfCall(), failureOf("write", EPIPE));
}

TEST_F(AppBridgeLimitsTest, AConnectionResetIsAReadFailure) {
  const auto application = applicationWith([](Connection& connection) {
    connection.readSome(1);
    // Closing with the rest of the request unread resets the connection.
    int unread = 0;
    while (unread < 20) ioctl(connection.descriptor(), FIONREAD, &unread);
  });
  EXPECT_EQ(outcomeOfCall(), failureOf("read", ECONNRESET));
}

TEST_F(AppBridgeLimitsTest, ResponsesMayHaveOneMebibyteLineFeedIncluded) {
  const std::string head = R"({"ok":true,"result":[")";
  const std::string tail = "\"]}\n";
  for (const std::size_t size : {mebibyte - 1, mebibyte, mebibyte + 1, mebibyte + 2}) {
    const std::string text(size - head.size() - tail.size(), 'x');
    const auto application = applicationAnswering(head + text + tail);
    if (size <= mebibyte) {
      EXPECT_EQ(outcomeOfCall(), "[\"" + text + "\"]") << size;
    } else {
      EXPECT_EQ(outcomeOfCall(), "-32000 response too large (>1 MiB) no data") << size;
    }
    EXPECT_EQ(application.connectionCount(), 1);
  }
}

TEST_F(AppBridgeLimitsTest, AFloodIsCutOffAtOnce) {
  std::atomic<std::size_t> sent = 0;
  {
    const auto application = applicationWith([&](Connection& connection) {
      connection.readToEnd();
      const std::string chunk(65536, ' ');
      while (connection.send(chunk)) sent += chunk.size();
    });
    EXPECT_EQ(outcomeOfCall(), "-32000 response too large (>1 MiB) no data");
  }
  // What the peer can get rid of beyond the limit is what the socket's buffers hold.
  EXPECT_LT(sent, 3 * mebibyte);
}

TEST_F(AppBridgeLimitsTest, LargeRequestsArriveWhole) {
  const auto application = applicationAnswering(okResponse);
  const std::string text(mebibyte - 200, 'x');
  EXPECT_EQ(outcomeOfCall("m", {{"text", text}}), "[1]");
  ASSERT_EQ(application.requests().size(), 1U);
  EXPECT_EQ(canonical(application.requests()[0]), canonical(R"({"method":"m","args":{"text":")" + text + "\"}}"));
}

}  // namespace
}  // namespace orvane::test
