#include "bench/server_under_test.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <utility>

namespace orvane::bench {

namespace {

[[noreturn]] void stop(const char* what) {
  std::perror(what);
  std::exit(1);
}

long long nanoseconds(const timespec& time) { return time.tv_sec * 1'000'000'000LL + time.tv_nsec; }

}  // namespace

long long nowNanoseconds() {
  timespec time{};
  clock_gettime(CLOCK_MONOTONIC, &time);
  return nanoseconds(time);
}

ServerUnderTest::ServerUnderTest(std::vector<std::string> command, Transport transport) {
  int toServer[2];
  int fromServer[2];
  if (transport == Transport::pipes) {
    if (pipe2(toServer, O_CLOEXEC) != 0 || pipe2(fromServer, O_CLOEXEC) != 0) stop("pipe2");
  } else {
    int pair[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, pair) != 0) stop("socketpair");
    toServer[0] = fromServer[1] = pair[0];
    toServer[1] = fromServer[0] = pair[1];
  }
  std::vector<char*> arguments;
  for (std::string& argument : command) arguments.push_back(argument.data());
  arguments.push_back(nullptr);
  // vfork, as hosts effectively do: the cost of copying this process is not the server's.
  pid_ = vfork();
  if (pid_ < 0) stop("vfork");
  if (pid_ == 0) {
    dup2(toServer[0], 0);
    dup2(fromServer[1], 1);
    execv(arguments[0], arguments.data());
    _exit(127);
  }
  close(toServer[0]);
  if (fromServer[1] != toServer[0]) close(fromServer[1]);
  input_ = toServer[1];
  output_ = fromServer[0];
  fcntl(input_, F_SETFL, fcntl(input_, F_GETFL) | O_NONBLOCK);
}

ServerUnderTest::ServerUnderTest(ServerUnderTest&& other) noexcept
    : pid_(std::exchange(other.pid_, -1)),
      input_(std::exchange(other.input_, -1)),
      output_(std::exchange(other.output_, -1)) {}

ServerUnderTest::~ServerUnderTest() {
  if (pid_ > 0) finish();
}

std::size_t ServerUnderTest::exchange(std::string_view bytes, std::size_t lines) {
  static char buffer[1 << 18];
  std::size_t received = 0;
  while (!bytes.empty() || lines > 0) {
    if (!bytes.empty()) {
      const ssize_t written = write(input_, bytes.data(), bytes.size());
      if (written > 0) {
        bytes.remove_prefix(static_cast<std::size_t>(written));
        if (!bytes.empty()) continue;
      } else if (errno != EAGAIN) {
        stop("write to server");
      }
    }
    pollfd waits[2] = {{output_, POLLIN, 0}, {input_, POLLOUT, 0}};
    // With everything written, a blocking wait for the answer is what a client does; one call of poll shows that there
    // is something, also where both directions share one descriptor in non-blocking mode.
    if (poll(waits, bytes.empty() ? 1 : 2, 60'000) <= 0) stop("no answer within a minute");
    if ((waits[0].revents & (POLLIN | POLLHUP)) == 0) continue;
    const ssize_t count = read(output_, buffer, sizeof buffer);
    if (count <= 0) stop("server closed its output");
    received += static_cast<std::size_t>(count);
    lines -= std::min(lines, static_cast<std::size_t>(std::count(buffer, buffer + count, '\n')));
  }
  return received;
}

long long ServerUnderTest::cpuNanoseconds() const {
  clockid_t clock{};
  timespec time{};
  if (clock_getcpuclockid(pid_, &clock) != 0 || clock_gettime(clock, &time) != 0) stop("process clock");
  return nanoseconds(time);
}

long ServerUnderTest::peakKiB() const {
  std::ifstream status("/proc/" + std::to_string(pid_) + "/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("VmHWM:")) return std::strtol(line.c_str() + 6, nullptr, 10);
  }
  stop("no VmHWM in /proc");
}

void ServerUnderTest::finish() {
  if (input_ != output_) close(output_);
  // Of a socket pair, the server reads its end of file when the whole socket goes.
  close(input_);
  int status = 0;
  while (waitpid(pid_, &status, 0) < 0 && errno == EINTR) {
  }
  pid_ = -1;
}

}  // namespace orvane::bench
