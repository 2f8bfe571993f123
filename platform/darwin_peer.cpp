// macOS: who is at the other end of a socket.
#include <unistd.h>

#include <cerrno>

#include "platform/platform.h"

namespace orvane::platform {

Peer peerOf(int socket) {
  uid_t user = 0;
  gid_t group = 0;
  if (getpeereid(socket, &user, &group) != 0) return {errno, 0};
  return {0, user};
}

}  // namespace orvane::platform
