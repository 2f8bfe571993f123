// Every call of every function that can fail, failing once each: whatever happens, the program ends by itself, answers
// in order and with nothing but protocol, and leaves each file as it was or as it should be.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

#include "tests/faults/faulty_session.h"
#include "tests/support/independent_json.h"

namespace orvane::test {
namespace {

constexpr int shortTransfer = -1;

std::string kindName(int kind) { return kind == shortTransfer ? "short" : std::to_string(kind); }

// What a fault may cost.
struct Price {
  bool mayEndEarly = false;    // the input counts as ended
  bool mayLoseOne = false;     // one answer cannot be written
  bool mayLackMemory = false;  // one request is answered without its id
};

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::size_t start = 0;
  for (std::size_t end; (end = text.find('\n', start)) != std::string::npos; start = end + 1) {
    lines.push_back(text.substr(start, end - start));
  }
  EXPECT_EQ(start, text.size()) << "an unfinished line: " << text.substr(start, 300);
  return lines;
}

bool isLackOfMemory(const Json& answer) {
  return answer == parseJson(R"({"jsonrpc":"2.0","id":null,
                                 "error":{"code":-32603,"message":"Internal error: std::bad_alloc"}})");
}

class FaultTest : public ::testing::Test {
 protected:
  void checkAnswers(const FaultyOutcome& outcome, const Price& price) {
    int next = 1;
    int lost = 0;
    int nameless = 0;
    for (const std::string& line : linesOf(outcome.output)) {
      checkResponseLine(line);
      const Json answer = parseJson(line);
      if (price.mayLackMemory && isLackOfMemory(answer)) {
        ++nameless;
        continue;
      }
      ASSERT_TRUE(answer.at("id").is_int64()) << line.substr(0, 300);
      const auto id = static_cast<int>(answer.at("id").as_int64());
      lost += id - next;
      ASSERT_GE(id, next) << "answered twice or out of order";
      next = id + 1;
    }
    const int unanswered = session_.requestCount() + 1 - next;
    EXPECT_LE(nameless, 1);
    EXPECT_LE(lost + (price.mayEndEarly ? 0 : unanswered), nameless + (price.mayLoseOne ? 1 : 0))
        << outcome.output.size();
  }

  // The notes are the old ones or hold whole new lines, and those that were reported as kept.
  void checkPreferences(const FaultyOutcome& outcome) {
    std::vector<std::string> allowed{std::string(FaultySession::oldPreferences())};
    for (const auto& [id, line] : FaultySession::notes()) {
      for (std::size_t i = allowed.size(); i-- > 0;) allowed.push_back(allowed[i] + std::string(line));
    }
    EXPECT_NE(std::find(allowed.begin(), allowed.end(), outcome.preferences), allowed.end()) << outcome.preferences;
    for (const auto& [id, line] : FaultySession::notes()) {
      const std::string head = R"({"jsonrpc":"2.0","id":)" + std::to_string(id) + ",";
      const std::size_t start = outcome.output.find(head);
      if (start == std::string::npos) continue;
      const std::string answer = outcome.output.substr(start, outcome.output.find('\n', start) - start);
      const bool isKept = outcome.preferences.find(line) != std::string::npos;
      if (answer.find(R"(\"ok\": true)") != std::string::npos) {
        EXPECT_TRUE(isKept) << answer;
      }
    }
  }

  void check(const FaultyOutcome& outcome, const Price& price) {
    EXPECT_TRUE(outcome.hasEnded) << "the program hung";
    EXPECT_TRUE(WIFEXITED(outcome.status) && WEXITSTATUS(outcome.status) == 0) << "wait status " << outcome.status;
    checkAnswers(outcome, price);
    checkPreferences(outcome);
    EXPECT_TRUE(outcome.strayFiles.empty()) << outcome.strayFiles.front();
    if (outcome.hitDescriptor != 2) {
      for (const std::string& line : linesOf(outcome.errors)) {
        EXPECT_TRUE(line.starts_with("orvane-mcp: ") || line.starts_with("ContextAuditLog: ") ||
                    line.starts_with("profiling:"))
            << line;
      }
    }
  }

  // A fault that costs nothing: everything is as without it.
  void checkUnchanged(const FaultyOutcome& outcome) {
    EXPECT_TRUE(outcome.output == undisturbed_.output) << "other answers than without the fault";
    EXPECT_EQ(outcome.preferences, undisturbed_.preferences);
    EXPECT_EQ(linesOf(outcome.auditLog).size(), 4U);
    EXPECT_EQ(outcome.errors, undisturbed_.errors);
  }

  FaultySession session_;
  const FaultyOutcome undisturbed_ = session_.run("read:-1:0");
};

// A function, the kinds of fault it meets, and the input it is tried on.
struct Sweep {
  const char* function;
  std::vector<int> kinds;
  InputKind input = InputKind::pipe;
};

void PrintTo(const Sweep& sweep, std::ostream* stream) { *stream << sweep.function; }

const std::vector<int> errorKinds{EINTR, EAGAIN, EIO, ENOSPC, ECONNRESET};
const std::vector<int> transferKinds{EINTR, EAGAIN, EIO, ENOSPC, ECONNRESET, shortTransfer};

class EveryCallTest : public FaultTest, public ::testing::WithParamInterface<Sweep> {
 protected:
  static Price priceOf(const std::string& function, int kind, int hitDescriptor) {
    Price price;
    const bool isPassing = kind == EINTR || kind == EAGAIN || kind == shortTransfer;
    // Looking ahead may fail: the program then takes byte by byte.
    price.mayEndEarly = function == "read" && hitDescriptor == 0 && !isPassing;
    price.mayLoseOne = function == "writev" && hitDescriptor == 1 && !isPassing;
    if (function == "malloc") price.mayEndEarly = price.mayLackMemory = true;
    return price;
  }

  // A signal, and a transfer of less than was asked for, are no failures where the system knows them.
  static bool isHarmless(const std::string& function, int kind) {
    if (kind == shortTransfer) return true;
    if (kind != EINTR) return function == "tee" || function == "recv" || function == "pread";
    return function != "socket" && function != "connect" && function != "getsockopt" && function != "rename" &&
           function != "fstat" && function != "stat" && function != "mkdir" && function != "pthread_create" &&
           function != "pipe2";
  }
};

TEST_P(EveryCallTest, CostsNoMoreThanItMust) {
  const Sweep& sweep = GetParam();
  const std::string function = sweep.function;
  const long calls = session_.run(function + ":-1:0", sweep.input).calls;
  ASSERT_GT(calls, 0) << "the session never calls it";
  for (const int kind : sweep.kinds) {
    for (long call = 1; call <= calls; ++call) {
      const std::string fault = function + ":" + std::to_string(call) + ":" + kindName(kind);
      SCOPED_TRACE(fault);
      const FaultyOutcome outcome = session_.run(fault, sweep.input);
      check(outcome, priceOf(function, kind, outcome.hitDescriptor));
      if (isHarmless(function, kind)) checkUnchanged(outcome);
      if (HasFailure()) return;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(
    Functions, EveryCallTest,
    ::testing::Values(Sweep{"read", transferKinds}, Sweep{"tee", transferKinds}, Sweep{"writev", transferKinds},
                      Sweep{"write", transferKinds}, Sweep{"send", transferKinds}, Sweep{"connect", errorKinds},
                      Sweep{"socket", errorKinds}, Sweep{"getsockopt", errorKinds}, Sweep{"open", errorKinds},
                      Sweep{"close", errorKinds}, Sweep{"fstat", errorKinds}, Sweep{"stat", errorKinds},
                      Sweep{"fsync", errorKinds}, Sweep{"rename", errorKinds}, Sweep{"fchmod", errorKinds},
                      Sweep{"pipe2", errorKinds}, Sweep{"pthread_create", {EAGAIN}}, Sweep{"malloc", {ENOMEM}},
                      Sweep{"recv", transferKinds, InputKind::socket}, Sweep{"pread", transferKinds, InputKind::file}),
    [](const auto& sweep) { return std::string(sweep.param.function); });

TEST_F(FaultTest, TransfersOfOneByteCostNothing) {
  for (const char* function : {"read", "tee", "writev", "write", "send"}) {
    SCOPED_TRACE(function);
    const FaultyOutcome outcome = session_.run(std::string(function) + ":0:short");
    check(outcome, {});
    checkUnchanged(outcome);
  }
}

// The program waits only where a descriptor has nothing for it or no room.
TEST_F(FaultTest, AWaitThatIsInterruptedGoesOnAndOneThatFailsEndsByARule) {
  for (const std::string cause : {"read:1:11", "read:2:11", "tee:1:11", "writev:1:11", "writev:3:11"}) {
    for (const int kind : errorKinds) {
      const std::string faults = "poll:1:" + kindName(kind) + "," + cause;
      SCOPED_TRACE(faults);
      const FaultyOutcome outcome = session_.run(faults);
      EXPECT_NE(outcome.hitDescriptor, -1) << "the program did not wait";
      Price price;
      price.mayEndEarly = kind != EINTR && outcome.hitDescriptor == 0;
      price.mayLoseOne = kind != EINTR && outcome.hitDescriptor == 1;
      check(outcome, price);
      if (kind == EINTR) checkUnchanged(outcome);
    }
  }
}

}  // namespace
}  // namespace orvane::test
