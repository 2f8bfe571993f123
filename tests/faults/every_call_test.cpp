// Every call of every function that can fail, failing once each; and failing from some call on.
#include <cerrno>

#include "tests/faults/fault_test.h"

namespace orvane::test {
namespace {

// A function, the kinds of fault it meets, and the input it is tried on.
struct Sweep {
  const char* function;
  std::vector<int> kinds;
  InputKind input = InputKind::pipe;
};

std::string nameOf(const Sweep& sweep) {
  return std::string(sweep.function) + (sweep.input == InputKind::socket ? "OnASocket"
                                        : sweep.input == InputKind::file ? "OnAFile"
                                                                         : "");
}

void PrintTo(const Sweep& sweep, std::ostream* stream) { *stream << nameOf(sweep); }

const std::vector<int> errorKinds{EINTR, EAGAIN, EIO, ENOSPC, ECONNRESET};
const std::vector<int> transferKinds{EINTR, EAGAIN, EIO, ENOSPC, ECONNRESET, shortTransfer};
const std::vector<int> writingKinds{EINTR, EAGAIN, EIO, ENOSPC, ECONNRESET, shortTransfer, nothing};

std::vector<Sweep> sweeps() {
  std::vector<Sweep> result{
      {"read", transferKinds},
      {"tee", transferKinds},
      {"writev", writingKinds},
      {"write", writingKinds},
      {"send", writingKinds},
      {"recv", transferKinds, InputKind::socket},
      {"pread", transferKinds, InputKind::file},
      {"connect", errorKinds},
      {"socket", errorKinds},
      {"setsockopt", errorKinds},
      {"getsockopt", errorKinds},
      {"getsockopt", errorKinds, InputKind::socket},
      {"shutdown", errorKinds},
      {"open", errorKinds},
      {"close", errorKinds},
      {"fstat", transferKinds},
      {"stat", errorKinds},
      {"fsync", errorKinds},
      {"rename", errorKinds},
      {"fchmod", errorKinds},
      {"pipe2", errorKinds},
      {"lseek", errorKinds, InputKind::file},
      {"readdir", errorKinds},
      {"readlink", {EIO, EACCES, ENAMETOOLONG, nothing}},
      {"getentropy", errorKinds},
      {"pthread_create", {EAGAIN}},
  };
  if (canFailMalloc) result.push_back({"malloc", {ENOMEM}});
  return result;
}

const auto sweepName = [](const auto& sweep) { return nameOf(sweep.param); };

class SweepTest : public FaultTest, public ::testing::WithParamInterface<Sweep> {};

class EveryCallTest : public SweepTest {};

TEST_P(EveryCallTest, CostsNoMoreThanItMust) {
  const auto& [function, kinds, input] = GetParam();
  const long calls = callsOf(function, input);
  ASSERT_GT(calls, 0) << "the session never calls it";
  for (const int kind : kinds) {
    for (long call = 1; call <= calls; ++call) {
      const std::vector<Fault> fault{{function, std::to_string(call), kind}};
      SCOPED_TRACE(textOf(fault));
      const FaultyOutcome outcome = check(fault, input);
      if (isHarmless(function, kind)) checkUnchanged(outcome);
      if (HasFailure()) return;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Functions, EveryCallTest, ::testing::ValuesIn(sweeps()), sweepName);

// Where these go on for ever, one has a rule of its own, and without the other the home would be a directory that is
// not the test's.
INSTANTIATE_TEST_SUITE_P(FunctionsOnce, EveryCallTest,
                         ::testing::Values(Sweep{"create", {EEXIST}},
                                           Sweep{"getpwuid_r", {ERANGE, EIO, EMFILE, nothing}}),
                         sweepName);

class LastingFaultTest : public SweepTest {
 protected:
  // What goes on for ever, except a signal, a descriptor that is not ready and a write that takes nothing: the program
  // would rightly wait for ever.
  static std::string callsFrom(long first, int kind) {
    constexpr long row = 50;
    const std::string from = std::to_string(first) + "-";
    return kind == EINTR || kind == EAGAIN || kind == nothing ? from + std::to_string(first + row - 1) : from;
  }
};

TEST_P(LastingFaultTest, CostsNoMoreThanItMust) {
  const auto& [function, kinds, input] = GetParam();
  const long calls = callsOf(function, input);
  for (const int kind : kinds) {
    // Close together at the start, where the program finds its ways, and ever wider apart.
    for (long first = 1; first <= calls; first += 1 + first / 8) {
      const std::vector<Fault> fault{{function, callsFrom(first, kind), kind}};
      SCOPED_TRACE(textOf(fault));
      const FaultyOutcome outcome = check(fault, input);
      EXPECT_TRUE(first > 1 || outcome.faults.front().hasFallen());
      if (isHarmless(function, kind)) checkUnchanged(outcome);
      if (HasFailure()) return;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Functions, LastingFaultTest, ::testing::ValuesIn(sweeps()), sweepName);

}  // namespace
}  // namespace orvane::test
