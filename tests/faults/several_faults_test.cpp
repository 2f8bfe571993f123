// Faults that need something of their own: each other, a home without files, or the lot.
#include <cerrno>
#include <random>

#include "tests/faults/fault_test.h"

namespace orvane::test {
namespace {

// The program waits only where a descriptor has nothing for it or no room.
TEST_F(FaultTest, AWaitThatIsInterruptedGoesOnAndOneThatFailsEndsByARule) {
  for (const auto& [function, call] : std::vector<std::pair<std::string, std::string>>{
           {"read", "1"}, {"read", "2"}, {"tee", "1"}, {"writev", "1"}, {"writev", "3"}}) {
    for (const int kind : {EINTR, EAGAIN, EIO, ENOSPC, ECONNRESET}) {
      const std::vector<Fault> faults{{"poll", "1", kind}, {function, call, EAGAIN}};
      SCOPED_TRACE(textOf(faults));
      const FaultyOutcome outcome = check(faults);
      EXPECT_TRUE(outcome.faults.front().hasFallen()) << "the program did not wait";
      if (kind == EINTR) checkUnchanged(outcome);
    }
  }
}

// A line of which the first byte is out already: nothing may run into it.
TEST_F(FaultTest, NothingFollowsALineThatIsCutShort) {
  const FaultyOutcome outcome = check({{"writev", "3", shortTransfer}, {"writev", "4", EIO}});
  EXPECT_EQ(outcome.output, undisturbed_.output.substr(0, outcome.output.size()));
  EXPECT_EQ(outcome.output.substr(outcome.output.size() - 2), "\n{");
  EXPECT_EQ(outcome.preferences, undisturbed_.preferences) << "the requests are still served";
}

// The main thread is through with the input, and has nothing left to do, before the log has written its first record.
TEST_F(FaultTest, RecordsThatArePendingAtTheEndAreWritten) {
  const FaultyOutcome outcome = check({{"open", "1-", late}});
  EXPECT_TRUE(outcome.faults.front().hasFallen());
  checkUnchanged(outcome);
}

// The same as far as the system gives no thread: whoever ends the program writes the records.
TEST_F(FaultTest, RecordsAreWrittenWhereThereIsNeverAThread) {
  const FaultyOutcome outcome = check({{"pthread_create", "1-", EAGAIN}});
  checkUnchanged(outcome);
}

// A name for the new file is tried for sixteen times; then the notes stay what they were.
TEST_F(FaultTest, WhereEveryNameIsTakenTheNotesStay) {
  const FaultyOutcome outcome = check({{"create", "1-", EEXIST}});
  EXPECT_EQ(outcome.faults.front().calls, 2 * 16) << "for two notes";
  EXPECT_EQ(outcome.preferences, session_.oldPreferences());
}

// A file that takes nothing and reports no error would otherwise be tried for ever.
TEST_F(FaultTest, AWriteThatTakesNothingIsAFailure) {
  const FaultyOutcome outcome = check({{"write", "1-", nothing}});
  EXPECT_EQ(outcome.preferences, session_.oldPreferences());
  EXPECT_EQ(outcome.auditLog, "");
}

TEST_F(FaultTest, AFirstStartThatCannotMakeItsDirectoryAnswersAllTheSame) {
  session_.emptyHome();
  const long calls = session_.run("mkdir:0:0").faults.front().calls;
  ASSERT_GT(calls, 0);
  for (const int kind : {EINTR, EACCES, ENOSPC, EROFS}) {
    for (long call = 1; call <= calls; ++call) {
      for (const char* more : {"", "-"}) {
        const std::vector<Fault> fault{{"mkdir", std::to_string(call) + more, kind}};
        SCOPED_TRACE(textOf(fault));
        // How many there are depends on whether note or record comes first.
        EXPECT_TRUE(check(fault).faults.front().hasFallen() || call > 1);
      }
    }
  }
}

TEST_F(FaultTest, PairsDrawnByLotCostNoMoreThanTheyMust) {
  constexpr int runs = 300;
  std::vector<std::string> functions{
      "read",       "tee",        "recv",     "pread",   "writev",   "write",      "send", "connect",       "socket",
      "setsockopt", "getsockopt", "shutdown", "open",    "close",    "fstat",      "stat", "fsync",         "rename",
      "fchmod",     "pipe2",      "lseek",    "readdir", "readlink", "getentropy", "poll", "pthread_create"};
  if (canFailMalloc) functions.emplace_back("malloc");
  const std::vector<int> kinds{EINTR, EAGAIN, EIO, ENOSPC, ECONNRESET, shortTransfer, nothing};
  const std::vector<InputKind> inputs{InputKind::pipe, InputKind::socket, InputKind::file};
  std::mt19937 lot(20261121);
  const auto draw = [&](std::size_t count) { return static_cast<std::size_t>(lot()) % count; };
  int bothFell = 0;
  for (int run = 0; run < runs && !HasFailure(); ++run) {
    const InputKind input = inputs[draw(inputs.size())];
    std::vector<Fault> faults;
    while (faults.size() < 2) {
      const std::string& function = functions[draw(functions.size())];
      const int kind = function == "malloc" ? ENOMEM : kinds[draw(kinds.size())];
      const auto calls = static_cast<std::size_t>(callsOf(function, input));
      // A wait comes about by the other fault alone.
      if (calls == 0 && function != "poll") continue;
      const std::size_t call = 1 + draw(calls + 1);
      const std::size_t length = draw(2) == 0 ? 1 : 20;
      faults.push_back({function, std::to_string(call) + "-" + std::to_string(call + length - 1), kind});
    }
    SCOPED_TRACE(textOf(faults));
    const FaultyOutcome outcome = check(faults, input);
    if (outcome.faults[0].hasFallen() && outcome.faults[1].hasFallen()) ++bothFell;
    if (isHarmless(faults[0].function, faults[0].kind) && isHarmless(faults[1].function, faults[1].kind)) {
      checkUnchanged(outcome);
    }
  }
  EXPECT_GT(bothFell, runs / 3) << "too many of the faults met nothing";
}

}  // namespace
}  // namespace orvane::test
