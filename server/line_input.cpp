#include "server/line_input.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace orvane {

namespace {

// As much as a pipe holds by default.
constexpr std::size_t bufferSize = 65536;

// Whether a call that failed can be made again: it was interrupted, or data has come after a wait.
bool canRetry(int descriptor) {
  if (errno == EINTR) return true;
  if (errno != EAGAIN && errno != EWOULDBLOCK) return false;
  pollfd waiting{descriptor, POLLIN, 0};
  return poll(&waiting, 1, -1) >= 0 || errno == EINTR;
}

// read(2) that waits and is not interrupted.
ssize_t readSome(int descriptor, char* buffer, std::size_t size) {
  while (true) {
    const ssize_t count = read(descriptor, buffer, size);
    if (count >= 0 || !canRetry(descriptor)) return count;
  }
}

}  // namespace

std::string_view LineInput::take() {
  if (way_ == Way::unknown) chooseWay();
  if (way_ != Way::byteByByte && seenStart_ == seenEnd_ && !look()) return {};
  if (way_ == Way::byteByByte) return takeByte();

  char* const start = buffer_.get() + seenStart_;
  const std::size_t seen = seenEnd_ - seenStart_;
  const void* const newline = std::memchr(start, '\n', seen);
  const std::size_t wanted =
      newline == nullptr ? seen : static_cast<std::size_t>(static_cast<const char*>(newline) - start) + 1;
  const ssize_t taken = readSome(descriptor_, start, wanted);
  if (taken <= 0) return {};
  seenStart_ += static_cast<std::size_t>(taken);
  return {start, static_cast<std::size_t>(taken)};
}

void LineInput::chooseWay() {
  way_ = Way::byteByByte;
  struct stat status {};
  if (fstat(descriptor_, &status) != 0) return;
  if (S_ISFIFO(status.st_mode)) {
    way_ = Way::pipe;
  } else if (S_ISREG(status.st_mode)) {
    way_ = Way::file;
  } else if (S_ISSOCK(status.st_mode)) {
    // Of a packet, what is not read at once is lost, looked at or not.
    int type = 0;
    socklen_t length = sizeof type;
    if (getsockopt(descriptor_, SOL_SOCKET, SO_TYPE, &type, &length) == 0 && type == SOCK_STREAM) way_ = Way::socket;
  }
  if (way_ != Way::byteByByte) buffer_.reset(new char[bufferSize]);
}

// Fills the buffer with what lies ahead. False at end of file. Where looking is refused, the way becomes byteByByte.
bool LineInput::look() {
  while (true) {
    const ssize_t count = peek();
    if (count < 0) {
      if (canRetry(descriptor_)) continue;
      way_ = Way::byteByByte;
      return true;
    }
    seenStart_ = 0;
    seenEnd_ = static_cast<std::size_t>(count);
    return count > 0;
  }
}

ssize_t LineInput::peek() {
  if (way_ == Way::socket) return recv(descriptor_, buffer_.get(), bufferSize, MSG_PEEK);
  if (way_ == Way::pipe) return pipePeek_.peek(descriptor_, buffer_.get(), bufferSize);
  const off_t offset = lseek(descriptor_, 0, SEEK_CUR);
  return offset < 0 ? -1 : pread(descriptor_, buffer_.get(), bufferSize, offset);
}

std::string_view LineInput::takeByte() {
  if (readSome(descriptor_, &byte_, 1) != 1) return {};
  return {&byte_, 1};
}

}  // namespace orvane
