// A server process as the benchmark client drives it: started over two pipes or one socket pair, lines in and out.
#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>
#include <vector>

namespace orvane::bench {

enum class Transport {
  pipes,       ///< two pipes, as most hosts use
  socketPair,  ///< one socket pair, as Node-based hosts use
};

class ServerUnderTest {
 public:
  /// Starts `command` (program and arguments). Ends the benchmark if that is impossible.
  ServerUnderTest(std::vector<std::string> command, Transport transport);
  ~ServerUnderTest();
  ServerUnderTest(ServerUnderTest&& other) noexcept;
  ServerUnderTest& operator=(ServerUnderTest&&) = delete;

  /// Writes `bytes` whole while reading whatever comes back, then waits until `lines` line feeds have come in all since
  /// the call. Returns the number of bytes received.
  std::size_t exchange(std::string_view bytes, std::size_t lines);

  /// CPU time the process has used so far, in nanoseconds.
  long long cpuNanoseconds() const;

  /// The most memory the process has had resident, in KiB.
  long peakKiB() const;

  /// Closes the process's input and waits for its end.
  void finish();

 private:
  pid_t pid_ = -1;
  int input_ = -1;   // the end we write to
  int output_ = -1;  // the end we read from
};

/// Nanoseconds on the monotonic clock.
long long nowNanoseconds();

}  // namespace orvane::bench
