// Linux: sockets, files and threads, where its calls are not those of macOS.
#include <pthread.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

#include "platform/platform.h"

namespace orvane::platform {

void suppressSigpipe(int) {}

int sendFlags() { return MSG_NOSIGNAL; }

sockaddr_un socketAddress(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::memcpy(address.sun_path, path.data(), path.size());
  return address;
}

int flushToDisk(int descriptor) { return fsync(descriptor); }

void nameThread(const char* name) {
  // The kernel takes 15 bytes; the end of a reverse-DNS name tells more than its start.
  const std::size_t length = std::strlen(name);
  constexpr std::size_t longest = 15;
  pthread_setname_np(pthread_self(), name + (length - std::min(length, longest)));
}

}  // namespace orvane::platform
