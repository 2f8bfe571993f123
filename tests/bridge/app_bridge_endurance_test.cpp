// The bridge under a slow peer, signals, and thousands of failing calls.
#include <gtest/gtest.h>
#include <pthread.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <iterator>
#include <string>
#include <thread>

#include "core/startup_values.h"
#include "tests/support/bridge_call.h"
#include "tests/support/fake_platform.h"

namespace orvane::test {
namespace {

// The number of descriptors that this process has open.
std::size_t openDescriptorCount() {
  const auto entries = std::filesystem::directory_iterator("/dev/fd");
  return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

class AppBridgeEnduranceTest : public testing::Test {
 protected:
  FakeHome home_;
};

TEST_F(AppBridgeEnduranceTest, AnAnswerByDripsIsReadToItsEnd) {
  const auto application = applicationWith([](Connection& connection) {
    connection.readToEnd();
    for (const char byte : okResponse) {
      connection.send({&byte, 1});
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  });
  EXPECT_EQ(outcomeOfCall(), "[1]");
  EXPECT_EQ(application.connectionCount(), 1);
}

TEST_F(AppBridgeEnduranceTest, AnAnswerMayComeWhileTheRequestIsBeingWritten) {
  const auto application = applicationWith([](Connection& connection) {
    connection.send(okResponse);
    connection.readToEnd();
  });
  EXPECT_EQ(outcomeOfCall("m", {{"text", std::string(mebibyte, 'x')}}), "[1]");
}

TEST_F(AppBridgeEnduranceTest, TheRequestEndsTheClientsSide) {
  std::atomic<bool> hasEnded = false;
  const auto application = applicationWith([&](Connection& connection) {
    connection.readToEnd();
    hasEnded = connection.readSome(1).empty();
    connection.send(okResponse);
  });
  EXPECT_EQ(outcomeOfCall(), "[1]");
  EXPECT_TRUE(hasEnded);
}

std::atomic<int> signalCount = 0;

TEST_F(AppBridgeEnduranceTest, SignalsInterruptNothing) {
  signalCount = 0;
  struct sigaction counting {};
  struct sigaction before {};
  counting.sa_handler = [](int) { ++signalCount; };
  ASSERT_EQ(sigaction(SIGUSR1, &counting, &before), 0);
  {
    const pthread_t caller = pthread_self();
    const auto application = applicationWith([&](Connection& connection) {
      const auto interrupt = [&] {
        const int seen = signalCount;
        pthread_kill(caller, SIGUSR1);
        // Signals that meet a pending one are lost, so each is waited for.
        while (signalCount == seen) std::this_thread::sleep_for(std::chrono::microseconds(100));
      };
      for (int i = 0; i < 20; ++i) interrupt();  // while the request fills the socket and waits
      for (int i = 0; i < 20; ++i) {
        connection.readSome(1000);
        interrupt();
      }
      connection.readToEnd();
      for (const char byte : okResponse) {
        interrupt();
        connection.send({&byte, 1});
      }
    });
    EXPECT_EQ(outcomeOfCall("m", {{"text", std::string(2 * mebibyte, 'x')}}), "[1]");
    EXPECT_EQ(application.connectionCount(), 1);
  }
  sigaction(SIGUSR1, &before, nullptr);
  EXPECT_EQ(signalCount, 40 + static_cast<int>(okResponse.size()));
}

TEST_F(AppBridgeEnduranceTest, ThousandsOfFailuresLeaveNoDescriptorOpen) {
  const std::size_t before = openDescriptorCount();
  for (int i = 0; i < 2000; ++i) ASSERT_EQ(outcomeOfCall(), notRunning);
  EXPECT_EQ(openDescriptorCount(), before);
  fakePlatform().applicationSupport = home_.file(std::string(100, 'x'));
  for (int i = 0; i < 2000; ++i) ASSERT_EQ(outcomeOfCall(), "-32000 socket path too long no data");
  EXPECT_EQ(openDescriptorCount(), before);
  fakePlatform().applicationSupport.reset();

  int calls = 0;
  {
    const auto application = applicationAnswering(R"({"ok":false,"error":{"code":"too_many_requests","message":"m"}})");
    const std::size_t withApplication = openDescriptorCount();
    for (; calls < 1000; ++calls) ASSERT_TRUE(outcomeOfCall().starts_with("-32014"));
    fakePlatform().peer = platform::Peer{0, getuid() + 1};
    for (; calls < 2000; ++calls) ASSERT_TRUE(outcomeOfCall().starts_with("-32015"));
    fakePlatform().peer = platform::Peer{EINVAL, 0};
    for (; calls < 3000; ++calls) ASSERT_EQ(outcomeOfCall(), failureOf("getpeereid", EINVAL));
    fakePlatform().peer.reset();
    setStartupValues({"\xFF", false});
    for (; calls < 4000; ++calls) ASSERT_THROW(AppBridge::call("m", {}), JSONWriteError);
    setStartupValues({});
    // Connections that the peer has not taken yet may still be open on its side.
    for (int wait = 0; wait < 5000 && application.requests().size() < 4000; ++wait) usleep(1000);
    EXPECT_EQ(application.connectionCount(), calls) << "one connection a call";
    for (int wait = 0; wait < 5000 && openDescriptorCount() != withApplication; ++wait) usleep(1000);
    EXPECT_EQ(openDescriptorCount(), withApplication);
  }
  EXPECT_EQ(openDescriptorCount(), before);
}

}  // namespace
}  // namespace orvane::test
