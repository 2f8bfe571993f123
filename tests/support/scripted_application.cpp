#include "tests/support/scripted_application.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <utility>

#include "core/descriptor_io.h"
#include "platform/platform.h"

namespace orvane::test {

namespace {

// No program that a test starts meanwhile is to hold a connection open.
Descriptor acceptFrom(int listener) {
#ifdef SOCK_CLOEXEC
  return Descriptor(accept4(listener, nullptr, nullptr, SOCK_CLOEXEC));
#else
  Descriptor connection(accept(listener, nullptr, nullptr));
  fcntl(connection.get(), F_SETFD, FD_CLOEXEC);
  return connection;
#endif
}

}  // namespace

std::string Connection::readToEnd() {
  while (!readSome(65536).empty()) {
  }
  return received_;
}

std::string Connection::readSome(std::size_t count) {
  std::string bytes(count, '\0');
  const ssize_t size = retryInterrupted([&] { return read(descriptor_, bytes.data(), bytes.size()); });
  bytes.resize(size > 0 ? static_cast<std::size_t>(size) : 0);
  received_ += bytes;
  return bytes;
}

bool Connection::send(std::string_view bytes) const {
  while (!bytes.empty()) {
    const ssize_t sent =
        retryInterrupted([&] { return ::send(descriptor_, bytes.data(), bytes.size(), platform::sendFlags()); });
    if (sent <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(sent));
  }
  return true;
}

ScriptedApplication::ScriptedApplication(const std::string& path, Script script) : script_(std::move(script)) {
  std::filesystem::remove(path);
  listener_ = Descriptor(boundSocket(path));
  EXPECT_EQ(listen(listener_.get(), 64), 0) << "cannot listen, errno " << errno;
  std::array<int, 2> ends{};
  EXPECT_EQ(pipe(ends.data()), 0);
  stopReader_ = Descriptor(ends[0]);
  stopWriter_ = Descriptor(ends[1]);
  for (const int end : ends) fcntl(end, F_SETFD, FD_CLOEXEC);
  thread_ = std::thread([this] { serve(); });
}

ScriptedApplication::~ScriptedApplication() {
  EXPECT_EQ(write(stopWriter_.get(), ".", 1), 1);
  thread_.join();
}

std::vector<std::string> ScriptedApplication::requests() const {
  const std::lock_guard lock(mutex_);
  return requests_;
}

void ScriptedApplication::serve() {
  while (true) {
    std::array<pollfd, 2> waits{pollfd{listener_.get(), POLLIN, 0}, pollfd{stopReader_.get(), POLLIN, 0}};
    poll(waits.data(), waits.size(), -1);
    if (waits[0].revents == 0 && waits[1].revents != 0) return;
    const Descriptor accepted = acceptFrom(listener_.get());
    if (!accepted.isOpen()) continue;
    ++connectionCount_;
    Connection connection(accepted.get());
    platform::suppressSigpipe(connection.descriptor());
    script_(connection);
    // Kept before the connection ends, so that whoever has seen the whole answer also finds the request.
    const std::lock_guard lock(mutex_);
    requests_.push_back(connection.received());
  }
}

ScriptedApplication::Script answerWith(std::string bytes) {
  return [bytes = std::move(bytes)](Connection& connection) {
    connection.readToEnd();
    connection.send(bytes);
  };
}

int boundSocket(const std::string& path) {
  std::filesystem::create_directories(std::filesystem::path(path).parent_path());
  const int descriptor = platform::openUnixSocket();
  const sockaddr_un address = platform::socketAddress(path);
  EXPECT_EQ(bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0)
      << "cannot bind " << path << ", errno " << errno;
  return descriptor;
}

void leaveStaleSocket(const std::string& path) { const Descriptor socket(boundSocket(path)); }

}  // namespace orvane::test
