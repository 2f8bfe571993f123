#include "standin/listener.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <exception>
#include <stdexcept>

#include "core/error_text.h"
#include "core/files.h"
#include "core/paths.h"
#include "platform/platform.h"
#include "protocol/mcp_mutation.h"

namespace orvane::standin {

namespace {

constexpr std::size_t mostConnections = 64;
constexpr std::chrono::milliseconds fullHousePause{20};

[[noreturn]] void fail(const std::string& what) { throw std::runtime_error(what + ": " + errorText(errno)); }

Descriptor openSocket() {
  Descriptor socket(platform::openUnixSocket());
  if (!socket.isOpen()) fail("socket() failed");
  return socket;
}

int bindTo(const Descriptor& socket, const std::string& path) {
  const sockaddr_un address = platform::socketAddress(path);
  // The mask, because between bind() and a later chmod() others could connect.
  const mode_t mask = umask(0177);
  const int result = bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address);
  const int error = errno;
  umask(mask);
  errno = error;
  return result;
}

// Removes a socket file that nobody listens at any more.
void removeStaleSocket(const std::string& path) {
  struct stat entry {};
  if (lstat(path.c_str(), &entry) != 0) return;
  if (!S_ISSOCK(entry.st_mode)) throw std::runtime_error(path + " exists and is no socket");
  const Descriptor probe = openSocket();
  const sockaddr_un address = platform::socketAddress(path);
  if (connect(probe.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) {
    throw std::runtime_error("something already listens at " + path);
  }
  if (errno != ECONNREFUSED) fail("cannot tell whether something listens at " + path);
  if (unlink(path.c_str()) != 0) fail("cannot remove the stale socket " + path);
}

}  // namespace

Listener::Listener(std::string path, Handler handler) : path_(std::move(path)), handler_(std::move(handler)) {
  if (path_.size() > platform::maxSocketPathLength) throw std::runtime_error("socket path too long: " + path_);
  int ends[2];
  if (pipe(ends) != 0) fail("pipe() failed");
  stopReader_ = Descriptor(ends[0]);
  stopWriter_ = Descriptor(ends[1]);
  for (const int end : ends) fcntl(end, F_SETFD, FD_CLOEXEC);

  if (const FileOutcome failure = createDirectories(parentDirectory(path_))) {
    throw std::runtime_error("cannot make the directory of " + path_ + ": " + failure->description());
  }
  socket_ = openSocket();
  if (bindTo(socket_, path_) != 0) {
    if (errno != EADDRINUSE) fail("cannot bind " + path_);
    removeStaleSocket(path_);
    if (bindTo(socket_, path_) != 0) fail("cannot bind " + path_);
  }
  struct stat entry {};
  if (lstat(path_.c_str(), &entry) != 0) fail("cannot look at " + path_);
  device_ = static_cast<unsigned long long>(entry.st_dev);
  inode_ = static_cast<unsigned long long>(entry.st_ino);
  if (listen(socket_.get(), 128) != 0) fail("cannot listen at " + path_);
  // A client may vanish between poll() and accept().
  fcntl(socket_.get(), F_SETFL, O_NONBLOCK);
}

Listener::~Listener() {
  stop();
  for (Connection& connection : connections_) connection.thread.join();
  struct stat entry {};
  if (lstat(path_.c_str(), &entry) == 0 && static_cast<unsigned long long>(entry.st_dev) == device_ &&
      static_cast<unsigned long long>(entry.st_ino) == inode_) {
    unlink(path_.c_str());
  }
}

void Listener::stop() const noexcept {
  // Nobody empties the pipe, so that every thread that looks sees the end; a full pipe says so already.
  const char end = 0;
  const ssize_t written = write(stopWriter_.get(), &end, 1);
  static_cast<void>(written);
}

// Waits until `descriptor` is ready; false if time runs out or the end comes first. A negative descriptor is never
// ready.
bool Listener::ready(int descriptor, short events, std::chrono::milliseconds timeout) const {
  pollfd waiting[2] = {{stopReader_.get(), POLLIN, 0}, {descriptor, events, 0}};
  const auto deadline = std::chrono::steady_clock::now() + timeout;
  while (true) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    const int count = poll(waiting, 2, left.count() < 0 ? 0 : static_cast<int>(left.count()));
    if (count < 0 && errno == EINTR) continue;
    return count > 0 && waiting[0].revents == 0;
  }
}

void Listener::run() {
  while (true) {
    reap();
    if (connections_.size() >= mostConnections) {
      ready(-1, 0, fullHousePause);
    } else if (ready(socket_.get(), POLLIN, patience)) {
      Descriptor client(accept(socket_.get(), nullptr, nullptr));
      if (!client.isOpen()) continue;
      fcntl(client.get(), F_SETFD, FD_CLOEXEC);
      fcntl(client.get(), F_SETFL, O_NONBLOCK);
      platform::suppressSigpipe(client.get());
      Connection& connection = connections_.emplace_back();
      connection.thread = std::thread([this, &connection, peer = std::move(client)]() mutable {
        const Descriptor own = std::move(peer);
        serve(own);
        connection.finished = true;
      });
    }
    pollfd stopped{stopReader_.get(), POLLIN, 0};
    if (poll(&stopped, 1, 0) > 0) return;
  }
}

void Listener::reap() {
  connections_.remove_if([](Connection& connection) {
    if (!connection.finished) return false;
    connection.thread.join();
    return true;
  });
}

void Listener::serve(const Descriptor& client) const {
  std::string request;
  char buffer[65536];
  while (true) {
    if (!ready(client.get(), POLLIN, patience)) return;
    const ssize_t count = read(client.get(), buffer, sizeof buffer);
    if (count < 0 && (errno == EINTR || errno == EAGAIN)) continue;
    if (count < 0) return;
    if (count == 0) break;
    request.append(buffer, static_cast<std::size_t>(count));
    if (request.size() > largestRequest) {
      send(client, encodeMCPMutationError(MCPMutationErrorCode::validationFailed, "request too large (>4 MiB)"));
      return;
    }
  }
  // Somebody only looked whether anyone listens.
  if (request.empty()) return;
  Answer answer;
  try {
    answer = handler_(request);
  } catch (const std::exception& fault) {
    std::fprintf(stderr, "orvane-standin: %s\n", fault.what());
    answer.bytes = encodeMCPMutationError(MCPMutationErrorCode::internalError, "the stand-in failed");
  }
  if (answer.delay.count() > 0) {
    ready(-1, 0, answer.delay);
  }
  send(client, answer.bytes);
}

bool Listener::send(const Descriptor& client, std::string_view bytes) const {
  while (!bytes.empty()) {
    if (!ready(client.get(), POLLOUT, patience)) return false;
    const ssize_t count = ::send(client.get(), bytes.data(), bytes.size(), platform::sendFlags());
    if (count < 0 && (errno == EINTR || errno == EAGAIN)) continue;
    if (count <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

}  // namespace orvane::standin
