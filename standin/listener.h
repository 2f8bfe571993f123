// The socket that the stand-in listens at: one request and one answer per connection, a thread each, so that a slow
// answer holds nobody else up. Owns the socket file and removes it in the end.
#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <list>
#include <string>
#include <string_view>
#include <thread>

#include "core/descriptor.h"

namespace orvane::standin {

/// What to send, and when.
struct Answer {
  std::string bytes;  ///< nothing is sent if empty
  std::chrono::milliseconds delay{0};
};

class Listener {
 public:
  /// Answers a request, which is everything that the client sent; called from several threads.
  using Handler = std::function<Answer(std::string_view request)>;

  /// A request of more bytes than this is refused.
  static constexpr std::size_t largestRequest = std::size_t{4} << 20U;
  /// A client that neither sends nor takes anything for so long is given up.
  static constexpr std::chrono::milliseconds patience{30'000};

  /// Listens at `path`, for this user alone, and makes its directory if there is none. The socket of a stand-in that is
  /// gone is replaced. Throws std::runtime_error if somebody listens there, or if the socket cannot be made.
  Listener(std::string path, Handler handler);
  /// Gives up the connections that are open, and removes the socket file if it is still this one's.
  ~Listener();
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;

  /// Serves until stop() is called, then returns.
  void run();

  /// Ends run(), from any thread or signal handler.
  void stop() const noexcept;

 private:
  struct Connection {
    std::thread thread;
    std::atomic<bool> finished{false};
  };

  void serve(const Descriptor& client) const;
  void reap();
  bool ready(int descriptor, short events, std::chrono::milliseconds timeout) const;
  bool send(const Descriptor& client, std::string_view bytes) const;

  std::string path_;
  Handler handler_;
  Descriptor stopReader_;
  Descriptor stopWriter_;
  Descriptor socket_;
  unsigned long long device_ = 0;  ///< with inode_, tells this socket file from a later one at the same path
  unsigned long long inode_ = 0;
  std::list<Connection> connections_;
};

}  // namespace orvane::standin
