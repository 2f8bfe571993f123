// One scripted session of the real program in which chosen calls fail.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/private_home.h"
#include "tests/support/scripted_application.h"

namespace orvane::test {

/// What the program's standard input is.
enum class InputKind { pipe, socket, file };

/// What became of one fault in a session.
struct FaultReport {
  long calls = 0;              ///< how often its function was called
  int descriptor = -1;         ///< on which descriptor it fell last; -1 it did not fall, -2 on none
  std::array<long, 4> hits{};  ///< how often it fell on the descriptors 0, 1, 2 and elsewhere

  bool hasFallen() const { return descriptor != -1; }
};

/// What became of one session.
struct FaultyOutcome {
  bool hasEnded = false;  ///< by itself, in time
  int status = -1;        ///< the wait status
  std::string output;
  std::string errors;
  std::vector<FaultReport> faults;  ///< in the order in which they were given
  std::string preferences;          ///< the notes afterwards
  std::string auditLog;
  std::vector<std::string> strayFiles;  ///< in the configuration directory, beside those that belong there
};

class FaultySession {
 public:
  FaultySession();

  /// Runs the session. `faults` is in the form that the preloaded library reads, which takes four of them.
  FaultyOutcome run(const std::string& faults, InputKind kind = InputKind::pipe);

  /// From now on each session is the first one: the home has no configuration directory yet.
  void emptyHome() { isHomeEmpty_ = true; }

  /// The requests of the session have the ids 1 to this one.
  int requestCount() const;
  /// The notes before the session.
  std::string_view oldPreferences() const;
  /// The lines that the session adds to them, and the requests that ask for it.
  struct Note {
    int id;
    std::string_view line;
  };
  static const std::vector<Note>& notes();

 private:
  void furnishHome() const;
  void collectFiles(FaultyOutcome& outcome) const;

  PrivateHome home_;
  ScriptedApplication application_;
  bool isHomeEmpty_ = false;
};

}  // namespace orvane::test
