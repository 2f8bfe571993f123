#include "tests/support/scripted_application.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>
#include <utility>

namespace orvane::tests {

int boundSocket(const std::string& path) {
  std::filesystem::create_directories(std::filesystem::path(path).parent_path());
  const int descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  EXPECT_LT(path.size(), sizeof address.sun_path);
  std::memcpy(address.sun_path, path.data(), std::min(path.size(), sizeof address.sun_path - 1));
  EXPECT_EQ(bind(descriptor, reinterpret_cast<sockaddr*>(&address), sizeof address), 0) << path;
  return descriptor;
}

std::string readToEnd(int connection) {
  std::string bytes;
  std::array<char, 65536> chunk;
  ssize_t count = 0;
  while ((count = read(connection, chunk.data(), chunk.size())) > 0) {
    bytes.append(chunk.data(), static_cast<std::size_t>(count));
  }
  return bytes;
}

void writeFully(int connection, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::send(connection, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (count <= 0) {
      return;
    }
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
}

ScriptedApplication::Behaviour answerWith(std::string bytes) {
  return [bytes = std::move(bytes)](int connection) {
    std::string request = readToEnd(connection);
    writeFully(connection, bytes);
    return request;
  };
}

ScriptedApplication::ScriptedApplication(const std::string& path, Behaviour chosen) : behaviour(std::move(chosen)) {
  listener = boundSocket(path);
  EXPECT_EQ(listen(listener, 16), 0);
  std::array<int, 2> ends{};
  EXPECT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
  stopReader = ends[0];
  stopWriter = ends[1];
  thread = std::thread([this] { serve(); });
}

ScriptedApplication::~ScriptedApplication() {
  close(stopWriter);
  thread.join();
  close(stopReader);
  close(listener);
}

std::vector<std::string> ScriptedApplication::requests() const {
  const std::lock_guard<std::mutex> guard(mutex);
  return received;
}

void ScriptedApplication::serve() {
  while (true) {
    std::array<pollfd, 2> waits{pollfd{listener, POLLIN, 0}, pollfd{stopReader, POLLIN, 0}};
    poll(waits.data(), waits.size(), -1);
    if (waits[0].revents == 0) {
      return;  // asked to stop, and nobody is waiting any more
    }
    const int connection = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
    std::string request = behaviour(connection);
    {
      // Kept before the connection ends, so that whoever has seen the answer also finds the request.
      const std::lock_guard<std::mutex> guard(mutex);
      received.push_back(std::move(request));
    }
    close(connection);
  }
}

}  // namespace orvane::tests
