#include "platform/pipe_peek.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace orvane::platform {

PipePeek::~PipePeek() { closeScratch(); }

void PipePeek::closeScratch() {
  for (int& descriptor : scratch_) {
    if (descriptor >= 0) close(std::exchange(descriptor, -1));
  }
}

#ifdef __linux__

ssize_t PipePeek::peek(int descriptor, char* buffer, std::size_t capacity) {
  if (scratch_[0] < 0 && pipe2(scratch_, O_CLOEXEC) != 0) return -1;
  const ssize_t seen = tee(descriptor, scratch_[1], capacity, 0);
  if (seen <= 0) return seen;
  // The scratch pipe must be empty again before the next look.
  std::size_t copied = 0;
  while (copied < static_cast<std::size_t>(seen)) {
    const ssize_t count = read(scratch_[0], buffer + copied, static_cast<std::size_t>(seen) - copied);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) {
      // What is left in it would be taken for the start of the next look.
      const int error = errno;
      closeScratch();
      errno = error;
      return -1;
    }
    copied += static_cast<std::size_t>(count);
  }
  return seen;
}

#else

ssize_t PipePeek::peek(int, char*, std::size_t) {
  errno = ENOSYS;
  return -1;
}

#endif

}  // namespace orvane::platform
