#include "tests/support/scripted_peer.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <filesystem>

#include "platform/platform.h"
#include "protocol/mcp_socket_path.h"

namespace orvane::test {

namespace {

int boundSocket(const std::string& path) {
  std::filesystem::create_directories(std::filesystem::path(path).parent_path());
  const int descriptor = platform::openUnixSocket();
  const sockaddr_un address = platform::socketAddress(path);
  if (bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    ADD_FAILURE() << "cannot bind " << path << ", errno " << errno;
  }
  return descriptor;
}

}  // namespace

std::string PeerConnection::readToEnd() const {
  std::string received;
  while (true) {
    const std::string bytes = readSome(65536);
    if (bytes.empty()) return received;
    received += bytes;
  }
}

std::string PeerConnection::readSome(std::size_t count) const {
  std::string buffer(count, '\0');
  ssize_t received = 0;
  do {
    received = read(descriptor_, buffer.data(), buffer.size());
  } while (received < 0 && errno == EINTR);
  buffer.resize(received > 0 ? static_cast<std::size_t>(received) : 0);
  return buffer;
}

bool PeerConnection::send(std::string_view bytes) const {
  while (!bytes.empty()) {
    const ssize_t sent = ::send(descriptor_, bytes.data(), bytes.size(), platform::sendFlags());
    if (sent < 0 && errno == EINTR) continue;
    if (sent <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(sent));
  }
  return true;
}

ScriptedPeer::ScriptedPeer(Script script)
    : script_(std::move(script)), path_(MCPSocketPath::resolve()), listener_(boundSocket(path_)) {
  if (listen(listener_, 64) != 0) ADD_FAILURE() << "cannot listen, errno " << errno;
  thread_ = std::thread([this] { serve(); });
}

ScriptedPeer::~ScriptedPeer() {
  shutdown(listener_, SHUT_RDWR);
  thread_.join();
  close(listener_);
  unlink(path_.c_str());
}

void ScriptedPeer::serve() {
  while (true) {
    const int descriptor = accept(listener_, nullptr, nullptr);
    if (descriptor < 0 && errno == EINTR) continue;
    if (descriptor < 0) return;
    ++connectionCount_;
    PeerConnection connection(descriptor);
    script_(connection);
    close(descriptor);
  }
}

AnsweringPeer::AnsweringPeer(std::string response)
    : response_(std::move(response)), peer_([this](PeerConnection& connection) {
        std::string request = connection.readToEnd();
        {
          const std::lock_guard lock(mutex_);
          requests_.push_back(std::move(request));
        }
        connection.send(response_);
      }) {}

std::vector<std::string> AnsweringPeer::requests() const {
  const std::lock_guard lock(mutex_);
  return requests_;
}

void leaveStaleSocket(const std::string& path) { close(boundSocket(path)); }

std::size_t openDescriptorCount() {
  const auto entries = std::filesystem::directory_iterator("/dev/fd");
  return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

}  // namespace orvane::test
