// The application's end of the socket, under a test's control: a listener on the path that the bridge uses, on a thread
// of its own, that treats every connection by one script.
#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace orvane::test {

/// One accepted connection, as the script sees it.
class PeerConnection {
 public:
  explicit PeerConnection(int descriptor) : descriptor_(descriptor) {}

  int descriptor() const { return descriptor_; }
  /// Reads until the client shuts down its sending side.
  std::string readToEnd() const;
  /// Reads at most `count` bytes, at least one unless the stream ends.
  std::string readSome(std::size_t count) const;
  /// Sends all of `bytes`; false if the client is gone.
  bool send(std::string_view bytes) const;

 private:
  int descriptor_;
};

class ScriptedPeer {
 public:
  using Script = std::function<void(PeerConnection&)>;

  /// Listens at MCPSocketPath::resolve(), making its directory. Each connection is closed when `script` returns.
  explicit ScriptedPeer(Script script);
  /// Stops listening and removes the socket file.
  ~ScriptedPeer();
  ScriptedPeer(const ScriptedPeer&) = delete;
  ScriptedPeer& operator=(const ScriptedPeer&) = delete;

  /// How many connections have been accepted so far.
  int connectionCount() const { return connectionCount_; }

 private:
  void serve();

  Script script_;
  std::string path_;
  int listener_;
  std::atomic<int> connectionCount_ = 0;
  std::thread thread_;
};

/// A peer that reads each request whole, keeps it and answers with the bytes it was given.
class AnsweringPeer {
 public:
  explicit AnsweringPeer(std::string response);

  int connectionCount() const { return peer_.connectionCount(); }
  /// The requests so far, as they came over the wire.
  std::vector<std::string> requests() const;

 private:
  std::string response_;
  mutable std::mutex mutex_;
  std::vector<std::string> requests_;
  ScriptedPeer peer_;
};

/// Makes a socket file at `path` that nobody listens on.
void leaveStaleSocket(const std::string& path);

/// The number of descriptors that this process has open.
std::size_t openDescriptorCount();

}  // namespace orvane::test
