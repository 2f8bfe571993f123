#include "server/output_handle.h"

#include <poll.h>
#include <sys/uio.h>
#include <unistd.h>

#include <array>
#include <cerrno>

#include "core/descriptor_io.h"

namespace orvane {

namespace {

// Waits until `descriptor` takes data again; false if that cannot be known.
bool waitUntilWritable(int descriptor) {
  pollfd waiting{descriptor, POLLOUT, 0};
  while (poll(&waiting, 1, -1) < 0) {
    if (errno != EINTR) return false;
  }
  return true;
}

}  // namespace

void OutputHandle::write(std::span<const std::string_view> pieces) {
  if (isBroken_) return;
  std::array<iovec, 8> vector{};
  std::size_t count = 0;
  for (const std::string_view piece : pieces) {
    if (!piece.empty()) vector.at(count++) = {const_cast<char*>(piece.data()), piece.size()};
  }
  std::size_t first = 0;
  bool hasStarted = false;
  while (first < count) {
    const ssize_t result = writev(descriptor_, &vector[first], static_cast<int>(count - first));
    if (result < 0) {
      if (errno == EINTR) continue;
      if (isNotReady(errno) && waitUntilWritable(descriptor_)) continue;
      isBroken_ = hasStarted;
      return;
    }
    auto written = static_cast<std::size_t>(result);
    hasStarted = hasStarted || written > 0;
    while (first < count && written >= vector[first].iov_len) written -= vector[first++].iov_len;
    if (first < count && written > 0) {
      vector[first].iov_base = static_cast<char*>(vector[first].iov_base) + written;
      vector[first].iov_len -= written;
    }
  }
}

}  // namespace orvane
