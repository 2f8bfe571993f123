// macOS below its frameworks: sockets, files, threads and queues, in the system's C.
#include "platform/darwin.h"

#include <dispatch/dispatch.h>
#include <fcntl.h>
#include <pthread.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "platform/platform.h"

namespace orvane::platform {

namespace {

bool meansUnsupported(int error) {
  return error == ENOTSUP || error == EOPNOTSUPP || error == EINVAL || error == ENOTTY || error == ENODEV;
}

}  // namespace

void runUserInitiated(void* context, void (*task)(void* context)) {
  dispatch_async_f(dispatch_get_global_queue(QOS_CLASS_USER_INITIATED, 0), context, task);
}

void suppressSigpipe(int socket) {
  const int on = 1;
  setsockopt(socket, SOL_SOCKET, SO_NOSIGPIPE, &on, sizeof on);
}

// MSG_NOSIGNAL is not on every version that is supported; the socket's own option does its work.
int sendFlags() { return 0; }

sockaddr_un socketAddress(const std::string& path) {
  static_assert(sizeof(sockaddr_un) == 106 && maxSocketPathLength == sizeof(sockaddr_un::sun_path) - 1);
  sockaddr_un address{};
  address.sun_len = sizeof address;
  address.sun_family = AF_UNIX;
  std::memcpy(address.sun_path, path.data(), path.size());
  return address;
}

int flushToDisk(int descriptor) {
  // fsync alone leaves the data in the drive's cache; network and some foreign file systems know nothing better.
  if (fcntl(descriptor, F_FULLFSYNC) != -1) return 0;
  return meansUnsupported(errno) ? fsync(descriptor) : -1;
}

void nameThread(const char* name) {
  // The system refuses more than 63 bytes; the end of a reverse-DNS name tells more than its start.
  const std::size_t length = std::strlen(name);
  constexpr std::size_t longest = 63;
  pthread_setname_np(length > longest ? name + (length - longest) : name);
}

}  // namespace orvane::platform
