// The real program as a child process of a test. Every line it writes to standard output is checked to be one JSON-RPC
// response with nothing around it; a line that is not fails the running test.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/independent_json.h"
#include "tests/support/private_home.h"

namespace orvane::test {

/// Long enough for a busy machine and a sanitizer; a passing test never waits for it.
inline constexpr std::chrono::seconds defaultPatience{120};

/// How the program is started.
struct Launch {
  std::string program = ORVANE_MCP_PROGRAM;  ///< the file that is executed
  std::optional<std::string> argumentZero;   ///< argv[0] where it is not the program's path
  std::vector<std::string> arguments;        ///< argv from index 1 on
  std::vector<std::string> environment;      ///< NAME=value, beside what the private home needs
  std::string workingDirectory = "/";        ///< where the child starts
  std::vector<std::string> preload;          ///< shared libraries to preload beside the home's
  bool socketPairs = false;                  ///< standard input and output are sockets instead of pipes
  bool nonBlocking = false;                  ///< the child's ends of both are left in non-blocking mode
  void (*prepare)() = nullptr;               ///< called in the child last of all; only what is safe after a fork
};

class ServerProcess {
 public:
  ServerProcess(const PrivateHome& home, const Launch& launch);
  ~ServerProcess();
  ServerProcess(const ServerProcess&) = delete;
  ServerProcess& operator=(const ServerProcess&) = delete;

  /// Writes all bytes to the program's standard input; takes in output meanwhile where the input is full.
  void send(std::string_view bytes);

  /// The next line of standard output without its line feed; nothing at its end or (with a failure) after `patience`.
  std::optional<std::string> readLine(std::chrono::seconds patience = defaultPatience);

  /// Sends `line` with a line feed and returns the parsed next answer.
  Json request(std::string_view line);

  /// Ends the program's standard input.
  void closeInput();
  /// Closes the reading end of standard output, as a client that has gone away.
  void closeOutput();

  /// Ends standard input, takes all remaining lines and the end of the process. Returns the remaining lines.
  std::vector<std::string> finish();

  /// Waits for the end of the process and returns its wait status, for WIFEXITED and its like.
  int wait();

  /// What the program wrote to standard error so far.
  std::string standardError() const;

  /// Bytes that lie in standard input and were not yet taken by the program.
  int unreadInput() const;
  /// Bytes of standard output that lie in the pipe and were not yet taken by the test.
  int pendingOutput() const;

  pid_t id() const { return child_; }

  /// How many descriptors the program has open. Steady from the first look-up of the home directory on, for which the
  /// tests' user database stays open.
  std::size_t openDescriptorCount() const;

  /// The program's own resident memory in bytes: heap, stacks and what it has written to. Pages of files come and go
  /// with the code that is run. Nothing under a sanitizer, whose memory would be what is measured.
  std::optional<std::size_t> ownMemory() const;

  /// The processor time that the program has taken so far.
  std::chrono::nanoseconds processorTime() const;

 private:
  bool takeOutput(int timeoutMilliseconds);

  pid_t child_ = -1;
  int input_ = -1;
  int inputWitness_ = -1;
  int output_ = -1;
  int errors_ = -1;
  bool outputEnded_ = false;
  std::optional<int> status_;
  std::string buffer_;
  std::size_t lineStart_ = 0;  // where in the buffer the next line begins
};

/// A test's patience, counted from now.
std::chrono::steady_clock::time_point deadlineAfter(std::chrono::seconds patience);

}  // namespace orvane::test
