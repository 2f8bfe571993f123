#include "tests/support/server_process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "tests/support/child_environment.h"

namespace orvane::tests {

namespace {

struct Channel {
  int ours;
  int theirs;
};

// Channels are close-on-exec, so that no other child started meanwhile keeps one of them open.
Channel makeChannel(bool socketPair, bool oursWrites) {
  std::array<int, 2> ends{};
  const int result =
      socketPair ? socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) : pipe2(ends.data(), O_CLOEXEC);
  if (result != 0) {
    ADD_FAILURE() << "no channel";
  }
  return oursWrites ? Channel{ends[1], ends[0]} : Channel{ends[0], ends[1]};
}

void setNonBlocking(int descriptor) { fcntl(descriptor, F_SETFL, fcntl(descriptor, F_GETFL) | O_NONBLOCK); }

int openUnnamedFile() {
  std::string pattern = "/tmp/orvane-stderr-XXXXXX";
  const int descriptor = mkostemp(pattern.data(), O_CLOEXEC);
  unlink(pattern.c_str());
  return descriptor;
}

std::vector<char*> pointersTo(std::vector<std::string>& strings) {
  std::vector<char*> pointers;
  for (std::string& text : strings) {
    pointers.push_back(text.data());
  }
  pointers.push_back(nullptr);
  return pointers;
}

}  // namespace

std::chrono::steady_clock::time_point deadlineAfter(std::chrono::seconds patience) {
  return std::chrono::steady_clock::now() + patience;
}

ServerProcess::ServerProcess(const PrivateHome& home, const Launch& launch) {
  std::signal(SIGPIPE, SIG_IGN);  // the test's own writes to a program that has ended
  const Channel in = makeChannel(launch.socketPairs, true);
  const Channel out = makeChannel(launch.socketPairs, false);
  errors = openUnnamedFile();
  setNonBlocking(in.ours);
  setNonBlocking(out.ours);
  if (launch.nonBlocking) {
    setNonBlocking(in.theirs);
    setNonBlocking(out.theirs);
  }

  std::vector<std::string> arguments{launch.argumentZero.value_or(launch.program)};
  arguments.insert(arguments.end(), launch.arguments.begin(), launch.arguments.end());
  std::vector<std::string> environment = childEnvironment(home, launch);
  std::vector<char*> argumentPointers = pointersTo(arguments);
  std::vector<char*> environmentPointers = pointersTo(environment);

  child = fork();
  if (child == 0) {
    // Only calls that are safe after a fork of a process with threads.
    if (dup2(in.theirs, 0) < 0 || dup2(out.theirs, 1) < 0 || dup2(errors, 2) < 0 ||
        chdir(launch.workingDirectory.c_str()) != 0) {
      _exit(126);
    }
    std::signal(SIGPIPE, SIG_DFL);
    execve(launch.program.c_str(), argumentPointers.data(), environmentPointers.data());
    _exit(127);
  }
  EXPECT_GT(child, 0);
  close(out.theirs);
  input = in.ours;
  output = out.ours;
  if (launch.socketPairs) {
    inputWitness = in.theirs;  // what a socket holds can only be asked at its receiving end
  } else {
    close(in.theirs);
  }
}

ServerProcess::~ServerProcess() {
  if (!status) {
    finish();
  }
  for (int descriptor : {input, inputWitness, output, errors}) {
    if (descriptor >= 0) {
      close(descriptor);
    }
  }
}

void ServerProcess::send(std::string_view bytes) {
  const auto deadline = deadlineAfter(defaultPatience);
  while (!bytes.empty()) {
    const ssize_t written = write(input, bytes.data(), bytes.size());
    if (written > 0) {
      bytes.remove_prefix(static_cast<std::size_t>(written));
      continue;
    }
    if (errno != EAGAIN || std::chrono::steady_clock::now() > deadline) {
      ADD_FAILURE() << "the program does not take its input, errno " << errno;
      return;
    }
    std::array<pollfd, 2> waits{pollfd{input, POLLOUT, 0}, pollfd{outputEnded ? -1 : output, POLLIN, 0}};
    poll(waits.data(), waits.size(), 1000);
    if (waits[1].revents != 0) {
      takeOutput(0);
    }
  }
}

bool ServerProcess::takeOutput(int timeoutMilliseconds) {
  if (output < 0 || outputEnded) {
    return false;
  }
  pollfd wait{output, POLLIN, 0};
  if (poll(&wait, 1, timeoutMilliseconds) <= 0) {
    return true;
  }
  std::array<char, 65536> chunk;
  const ssize_t count = read(output, chunk.data(), chunk.size());
  if (count > 0) {
    buffer.append(chunk.data(), static_cast<std::size_t>(count));
  } else if (count == 0 || (errno != EAGAIN && errno != EINTR)) {
    outputEnded = true;
  }
  return !outputEnded;
}

std::optional<std::string> ServerProcess::readLine(std::chrono::seconds patience) {
  const auto deadline = deadlineAfter(patience);
  std::size_t searched = lineStart;
  while (true) {
    const std::size_t end = buffer.find('\n', searched);
    if (end != std::string::npos) {
      std::string line = buffer.substr(lineStart, end - lineStart);
      lineStart = end + 1;
      // Seldom, because what is kept has to be moved.
      if (lineStart > buffer.size() / 2) {
        buffer.erase(0, lineStart);
        lineStart = 0;
      }
      checkResponseLine(line);
      return line;
    }
    searched = buffer.size();
    if (!takeOutput(1000)) {
      EXPECT_EQ(lineStart, buffer.size()) << "output that no line feed ends: " << buffer.substr(lineStart, 400);
      buffer.clear();
      lineStart = 0;
      return std::nullopt;
    }
    if (std::chrono::steady_clock::now() > deadline) {
      ADD_FAILURE() << "no answer in time; standard error: " << standardError();
      return std::nullopt;
    }
  }
}

Json ServerProcess::request(std::string_view line) {
  send(std::string(line) + "\n");
  const std::optional<std::string> answer = readLine();
  if (!answer) {
    ADD_FAILURE() << "no answer to " << line.substr(0, 400);
    return nullptr;
  }
  return parseJson(*answer);
}

void ServerProcess::closeInput() {
  if (input >= 0) {
    close(input);
    input = -1;
  }
}

void ServerProcess::closeOutput() {
  close(output);
  output = -1;
  outputEnded = true;
}

std::vector<std::string> ServerProcess::finish() {
  closeInput();
  std::vector<std::string> lines;
  while (std::optional<std::string> line = readLine()) {
    lines.push_back(*line);
  }
  wait();
  return lines;
}

int ServerProcess::wait() {
  const auto deadline = deadlineAfter(defaultPatience);
  while (!status) {
    int result = 0;
    const pid_t ended = waitpid(child, &result, WNOHANG);
    if (ended == child) {
      status = result;
    } else if (std::chrono::steady_clock::now() > deadline) {
      ADD_FAILURE() << "the program does not end";
      kill(child, SIGKILL);
      waitpid(child, &result, 0);
      status = result;
    } else {
      poll(nullptr, 0, 1);
    }
  }
  return *status;
}

std::string ServerProcess::standardError() const {
  std::string text;
  std::array<char, 4096> chunk;
  ssize_t count = 0;
  while ((count = pread(errors, chunk.data(), chunk.size(), static_cast<off_t>(text.size()))) > 0) {
    text.append(chunk.data(), static_cast<std::size_t>(count));
  }
  return text;
}

int ServerProcess::unreadInput() const {
  int count = -1;
  ioctl(inputWitness >= 0 ? inputWitness : input, FIONREAD, &count);
  return count;
}

int ServerProcess::pendingOutput() const {
  int count = -1;
  ioctl(output, FIONREAD, &count);
  return count;
}

}  // namespace orvane::tests
