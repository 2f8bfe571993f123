#include "server/line_input.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "core/descriptor_io.h"

namespace orvane {

namespace {

// As much as a pipe holds by default.
constexpr std::size_t bufferSize = 65536;

// Whether a call that failed can be made again: it was interrupted, or data has come after a wait.
bool canRetry(int descriptor) {
  if (errno == EINTR) return true;
  if (!isNotReady(errno)) return false;
  pollfd waiting{descriptor, POLLIN, 0};
  return poll(&waiting, 1, -1) >= 0 || errno == EINTR;
}

// The number of bytes up to and including the first line feed, or all of them.
std::size_t lengthOfLine(std::string_view bytes) {
  const std::size_t newline = bytes.find('\n');
  return newline == std::string_view::npos ? bytes.size() : newline + 1;
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
  if (taken_.empty() && !takeMore()) return {};
  const std::string_view piece = taken_.substr(0, lengthOfLine(taken_));
  taken_.remove_prefix(piece.size());
  return piece;
}

// Takes the seen bytes up to a line feed from the descriptor. False at end of file.
bool LineInput::takeMore() {
  if (way_ == Way::unknown) chooseWay();
  if (way_ != Way::byteByByte && seen_.empty() && !look()) return false;
  const std::size_t wanted = way_ == Way::byteByByte ? 1 : lengthOfLine(seen_);
  const ssize_t count = readSome(descriptor_, takenBuffer_.get(), wanted);
  if (count <= 0) return false;
  taken_ = {takenBuffer_.get(), static_cast<std::size_t>(count)};
  if (way_ == Way::byteByByte) return true;
  if (seen_.starts_with(taken_)) {
    seen_.remove_prefix(taken_.size());
  } else {
    // Someone else has read from the descriptor since we looked.
    seen_ = {};
  }
  return true;
}

void LineInput::chooseWay() {
  way_ = Way::byteByByte;
  takenBuffer_.reset(new char[bufferSize]);
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
  if (way_ != Way::byteByByte) seenBuffer_.reset(new char[bufferSize]);
}

// Looks at what lies ahead. False at end of file. Where looking is refused, the way becomes byteByByte.
bool LineInput::look() {
  while (true) {
    const ssize_t count = peek();
    if (count < 0) {
      if (canRetry(descriptor_)) continue;
      way_ = Way::byteByByte;
      return true;
    }
    seen_ = {seenBuffer_.get(), static_cast<std::size_t>(count)};
    return count > 0;
  }
}

ssize_t LineInput::peek() {
  if (way_ == Way::socket) return recv(descriptor_, seenBuffer_.get(), bufferSize, MSG_PEEK);
  if (way_ == Way::pipe) return pipePeek_.peek(descriptor_, seenBuffer_.get(), bufferSize);
  const off_t offset = lseek(descriptor_, 0, SEEK_CUR);
  return offset < 0 ? -1 : pread(descriptor_, seenBuffer_.get(), bufferSize, offset);
}

}  // namespace orvane
