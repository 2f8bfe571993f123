// A scripted peer in the application's place: listens at a socket path and treats each connection as the test says.
#pragma once

#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace orvane::tests {

class ScriptedApplication {
 public:
  /// What is done with one accepted connection. Returns the request it read, which is kept; the connection is closed
  /// afterwards.
  using Behaviour = std::function<std::string(int connection)>;

  /// Listens at `path` from the constructor's end on; directories on the way are made.
  ScriptedApplication(const std::string& path, Behaviour behaviour);
  ~ScriptedApplication();
  ScriptedApplication(const ScriptedApplication&) = delete;
  ScriptedApplication& operator=(const ScriptedApplication&) = delete;

  /// The requests of all connections that were dealt with so far.
  std::vector<std::string> requests() const;

 private:
  void serve();

  Behaviour behaviour;
  int listener = -1;
  int stopReader = -1;
  int stopWriter = -1;
  mutable std::mutex mutex;
  std::vector<std::string> received;
  std::thread thread;
};

/// A socket bound to `path` and not yet listening, with the directories on the way made.
int boundSocket(const std::string& path);

/// Reads to the end of stream.
std::string readToEnd(int connection);
/// Writes everything, as far as the other side takes it.
void writeFully(int connection, std::string_view bytes);
/// Reads the request to its end and answers with `bytes`.
ScriptedApplication::Behaviour answerWith(std::string bytes);

}  // namespace orvane::tests
