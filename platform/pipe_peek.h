// Looking at what a pipe holds without taking it.
#pragma once

#include <sys/types.h>

#include <cstddef>

namespace orvane::platform {

/// On Linux, tee(2) copies the pipe's content into a scratch pipe of our own, from which it is read. Other systems have
/// nothing of the kind.
class PipePeek {
 public:
  PipePeek() = default;
  ~PipePeek();
  PipePeek(const PipePeek&) = delete;
  PipePeek& operator=(const PipePeek&) = delete;

  /// Like recv(2) with MSG_PEEK, for the pipe `descriptor`: waits for data, copies at most `capacity` bytes of it to
  /// `buffer` and returns their number; 0 at end of file, -1 with errno set on failure, ENOSYS where it is impossible.
  ssize_t peek(int descriptor, char* buffer, std::size_t capacity);

 private:
  void closeScratch();

  int scratch_[2] = {-1, -1};
};

}  // namespace orvane::platform
