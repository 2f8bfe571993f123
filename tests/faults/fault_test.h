// What every session in which calls fail is held to: whatever happens, the program ends by itself, answers in order and
// with nothing but protocol, and leaves each file as it was or as it should be.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "tests/faults/faulty_session.h"

namespace orvane::test {

/// Kinds of faults beside the errno values.
inline constexpr int shortTransfer = -1;  ///< one byte instead of all; a file that is longer than it says
inline constexpr int late = -2;           ///< held up until the input has ended, off the main thread
inline constexpr int nothing = -3;        ///< no byte, or no user

/// AddressSanitizer has an allocator of its own in malloc's place.
#ifdef __SANITIZE_ADDRESS__
inline constexpr bool canFailMalloc = false;
#else
inline constexpr bool canFailMalloc = true;
#endif

/// Calls of one function that fail.
struct Fault {
  std::string function;
  std::string calls;  ///< which: "n", "n-" for all from the nth on, "n-m"; "0" for none
  int kind;           ///< an errno value, or one of the above
};

/// The faults in the form that the preloaded library reads.
std::string textOf(const std::vector<Fault>& faults);

/// Whether a fault of this kind is no failure where the system knows such calls: a signal, a transfer of less than was
/// asked for, a look ahead that is refused, an end of the stream that cannot be shown, a time limit that cannot be set,
/// a name that is taken, a buffer that is too small.
bool isHarmless(const std::string& function, int kind);

/// The lines of `text`, each of which ends with a line feed; what does not fails the test.
std::vector<std::string> linesOf(const std::string& text);

class FaultTest : public ::testing::Test {
 protected:
  /// Runs the session with these faults and holds it to the promise.
  FaultyOutcome check(const std::vector<Fault>& faults, InputKind input = InputKind::pipe);

  /// Expects everything to be as without a fault.
  void checkUnchanged(const FaultyOutcome& outcome) const;

  /// How often the session calls `function` where nothing fails.
  long callsOf(const std::string& function, InputKind input = InputKind::pipe);

  FaultySession session_;
  const FaultyOutcome undisturbed_ = session_.run("read:0:0");

 private:
  // What the faults may cost, by where they fell.
  struct Price {
    bool mayEndEarly = false;       // the input counts as ended
    bool mayBreakOff = false;       // a line cannot be finished, and nothing follows it
    bool mayCutRecord = false;      // the same for a record
    bool mayCutDiagnostic = false;  // the same for a diagnostic
    bool mayLackMemory = false;     // answers may be those of a program without memory
    long lostAnswers = 0;           // so many answers at most cannot be written
  };

  static Price priceOf(const std::vector<Fault>& faults, const FaultyOutcome& outcome);
  void checkAnswers(const FaultyOutcome& outcome, const Price& price) const;
  void checkPreferences(const FaultyOutcome& outcome) const;

  std::map<std::pair<std::string, InputKind>, long> calls_;
};

}  // namespace orvane::test
