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
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "tests/support/child_environment.h"

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define ORVANE_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define ORVANE_SANITIZED 1
#endif
#endif

namespace orvane::test {

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

}  // namespace

std::chrono::steady_clock::time_point deadlineAfter(std::chrono::seconds patience) {
  return std::chrono::steady_clock::now() + patience;
}

ServerProcess::ServerProcess(const PrivateHome& home, const Launch& launch) {
  std::signal(SIGPIPE, SIG_IGN);  // the test's own writes to a program that has ended
  const Channel in = makeChannel(launch.socketPairs, true);
  const Channel out = makeChannel(launch.socketPairs, false);
  errors_ = openUnnamedFile();
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

  child_ = fork();
  if (child_ == 0) {
    // Only calls that are safe after a fork of a process with threads.
    if (dup2(in.theirs, 0) < 0 || dup2(out.theirs, 1) < 0 || dup2(errors_, 2) < 0 ||
        chdir(launch.workingDirectory.c_str()) != 0) {
      _exit(126);
    }
    std::signal(SIGPIPE, SIG_DFL);
    if (launch.prepare != nullptr) launch.prepare();
    execve(launch.program.c_str(), argumentPointers.data(), environmentPointers.data());
    _exit(127);
  }
  EXPECT_GT(child_, 0);
  close(out.theirs);
  input_ = in.ours;
  output_ = out.ours;
  if (launch.socketPairs) {
    inputWitness_ = in.theirs;  // what a socket holds can only be asked at its receiving end
  } else {
    close(in.theirs);
  }
}

ServerProcess::~ServerProcess() {
  if (!status_) {
    finish();
  }
  for (int descriptor : {input_, inputWitness_, output_, errors_}) {
    if (descriptor >= 0) {
      close(descriptor);
    }
  }
}

void ServerProcess::send(std::string_view bytes) {
  const auto deadline = deadlineAfter(defaultPatience);
  while (!bytes.empty()) {
    const ssize_t written = write(input_, bytes.data(), bytes.size());
    if (written > 0) {
      bytes.remove_prefix(static_cast<std::size_t>(written));
      continue;
    }
    if (errno != EAGAIN || std::chrono::steady_clock::now() > deadline) {
      ADD_FAILURE() << "the program does not take its input, errno " << errno;
      return;
    }
    std::array<pollfd, 2> waits{pollfd{input_, POLLOUT, 0}, pollfd{outputEnded_ ? -1 : output_, POLLIN, 0}};
    poll(waits.data(), waits.size(), 1000);
    if (waits[1].revents != 0) {
      takeOutput(0);
    }
  }
}

bool ServerProcess::takeOutput(int timeoutMilliseconds) {
  if (output_ < 0 || outputEnded_) {
    return false;
  }
  pollfd wait{output_, POLLIN, 0};
  if (poll(&wait, 1, timeoutMilliseconds) <= 0) {
    return true;
  }
  std::array<char, 65536> chunk;
  const ssize_t count = read(output_, chunk.data(), chunk.size());
  if (count > 0) {
    buffer_.append(chunk.data(), static_cast<std::size_t>(count));
  } else if (count == 0 || (errno != EAGAIN && errno != EINTR)) {
    outputEnded_ = true;
  }
  return !outputEnded_;
}

std::optional<std::string> ServerProcess::readLine(std::chrono::seconds patience) {
  const auto deadline = deadlineAfter(patience);
  std::size_t searched = lineStart_;
  while (true) {
    const std::size_t end = buffer_.find('\n', searched);
    if (end != std::string::npos) {
      std::string line = buffer_.substr(lineStart_, end - lineStart_);
      lineStart_ = end + 1;
      // Seldom, because what is kept has to be moved.
      if (lineStart_ > buffer_.size() / 2) {
        buffer_.erase(0, lineStart_);
        lineStart_ = 0;
      }
      checkResponseLine(line);
      return line;
    }
    searched = buffer_.size();
    if (!takeOutput(1000)) {
      EXPECT_EQ(lineStart_, buffer_.size()) << "output that no line feed ends: " << buffer_.substr(lineStart_, 400);
      buffer_.clear();
      lineStart_ = 0;
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
  if (input_ >= 0) {
    close(input_);
    input_ = -1;
  }
}

void ServerProcess::closeOutput() {
  close(output_);
  output_ = -1;
  outputEnded_ = true;
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
  while (!status_) {
    int result = 0;
    const pid_t ended = waitpid(child_, &result, WNOHANG);
    if (ended == child_) {
      status_ = result;
    } else if (std::chrono::steady_clock::now() > deadline) {
      ADD_FAILURE() << "the program does not end";
      kill(child_, SIGKILL);
      waitpid(child_, &result, 0);
      status_ = result;
    } else {
      poll(nullptr, 0, 1);
    }
  }
  return *status_;
}

std::string ServerProcess::standardError() const {
  std::string text;
  std::array<char, 4096> chunk;
  ssize_t count = 0;
  while ((count = pread(errors_, chunk.data(), chunk.size(), static_cast<off_t>(text.size()))) > 0) {
    text.append(chunk.data(), static_cast<std::size_t>(count));
  }
  return text;
}

int ServerProcess::unreadInput() const {
  int count = -1;
  ioctl(inputWitness_ >= 0 ? inputWitness_ : input_, FIONREAD, &count);
  return count;
}

int ServerProcess::pendingOutput() const {
  int count = -1;
  ioctl(output_, FIONREAD, &count);
  return count;
}

std::size_t ServerProcess::openDescriptorCount() const {
  const std::filesystem::directory_iterator begin("/proc/" + std::to_string(child_) + "/fd");
  return static_cast<std::size_t>(std::distance(begin, std::filesystem::directory_iterator()));
}

std::optional<std::size_t> ServerProcess::ownMemory() const {
#ifdef ORVANE_SANITIZED
  return std::nullopt;
#else
  // Counted page by page; the figures in status and statm are only brought up to date now and then.
  std::ifstream rollup("/proc/" + std::to_string(child_) + "/smaps_rollup");
  for (std::string word; rollup >> word;) {
    std::size_t kibibytes = 0;
    if (word == "Anonymous:" && rollup >> kibibytes) return kibibytes * 1024;
  }
  ADD_FAILURE() << "the program's memory cannot be told";
  return std::nullopt;
#endif
}

std::chrono::nanoseconds ServerProcess::processorTime() const {
  clockid_t clock{};
  timespec time{};
  EXPECT_EQ(clock_getcpuclockid(child_, &clock), 0);
  EXPECT_EQ(clock_gettime(clock, &time), 0);
  return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

}  // namespace orvane::test
