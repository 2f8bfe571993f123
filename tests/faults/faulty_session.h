// One scripted session of the real program in which chosen calls fail.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tests/support/private_home.h"
#include "tests/support/scripted_application.h"

namespace orvane::test {

/// What the program's standard input is.
enum class InputKind { pipe, socket, file };

/// What became of one session.
struct FaultyOutcome {
  bool hasEnded = false;  ///< by itself, in time
  int status = -1;        ///< the wait status
  std::string output;
  std::string errors;
  long calls = 0;           ///< how often the first function of the faults was called
  int hitDescriptor = -1;   ///< on which descriptor its fault fell; -1 nowhere, -2 on none
  std::string preferences;  ///< the notes afterwards
  std::string auditLog;
  std::vector<std::string> strayFiles;  ///< in the configuration directory, beside those that belong there
};

class FaultySession {
 public:
  FaultySession();

  /// Runs the session. `faults` is in the form that the preloaded library reads.
  FaultyOutcome run(const std::string& faults, InputKind kind = InputKind::pipe);

  /// The requests of the session have the ids 1 to this one.
  int requestCount() const;
  /// The notes before the session.
  static std::string_view oldPreferences();
  /// The lines that the session adds to them, and the requests that ask for it.
  struct Note {
    int id;
    std::string_view line;
  };
  static const std::vector<Note>& notes();

 private:
  void collectFiles(FaultyOutcome& outcome) const;

  PrivateHome home_;
  ScriptedApplication application_;
};

}  // namespace orvane::test
