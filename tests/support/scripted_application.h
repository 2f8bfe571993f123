// A scripted peer in the application's place: listens at a socket path and treats each connection as the test says.
#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "core/descriptor.h"

namespace orvane::test {

/// One accepted connection, as the script sees it. Keeps what it has read.
class Connection {
 public:
  explicit Connection(int descriptor) : descriptor_(descriptor) {}

  int descriptor() const { return descriptor_; }
  /// Reads until the other side shuts down its sending side. Returns what arrived by that.
  std::string readToEnd();
  /// Reads at most `count` bytes, at least one unless the stream ends.
  std::string readSome(std::size_t count);
  /// Sends all of `bytes`; false if the other side is gone.
  bool send(std::string_view bytes) const;
  /// Everything that was read so far.
  const std::string& received() const { return received_; }

 private:
  int descriptor_;
  std::string received_;
};

class ScriptedApplication {
 public:
  /// What is done with one connection, which is closed when the script returns.
  using Script = std::function<void(Connection&)>;

  /// Listens at `path` from the constructor's end on; directories on the way are made, a socket file that someone left
  /// behind is replaced.
  ScriptedApplication(const std::string& path, Script script);
  /// Deals with whoever is still waiting and stops listening. The socket file stays, as after a crash.
  ~ScriptedApplication();
  ScriptedApplication(const ScriptedApplication&) = delete;
  ScriptedApplication& operator=(const ScriptedApplication&) = delete;

  /// How many connections have been accepted so far.
  int connectionCount() const { return connectionCount_; }
  /// What was read from each connection that was dealt with so far.
  std::vector<std::string> requests() const;

 private:
  void serve();

  Script script_;
  Descriptor listener_;
  Descriptor stopReader_;
  Descriptor stopWriter_;
  std::atomic<int> connectionCount_ = 0;
  mutable std::mutex mutex_;
  std::vector<std::string> requests_;
  std::thread thread_;
};

/// The script that reads the request to its end and answers with `bytes`.
ScriptedApplication::Script answerWith(std::string bytes);

/// A socket bound to `path` and not yet listening, with the directories on the way made. The caller closes it.
int boundSocket(const std::string& path);

/// Makes a socket file at `path` that nobody listens on.
void leaveStaleSocket(const std::string& path);

}  // namespace orvane::test
