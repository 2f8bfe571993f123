// What macOS and Linux share.
#include <fcntl.h>
#include <unistd.h>

#include "platform/platform.h"

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace orvane::platform {

void keepFreedMemory() {
#ifdef __GLIBC__
  // The largest request, its value and its answer fit in this. Other allocators cache by themselves.
  constexpr int keptBytes = 16 * 1024 * 1024;
  mallopt(M_TRIM_THRESHOLD, keptBytes);
  mallopt(M_MMAP_THRESHOLD, keptBytes);
#endif
}

int openUnixSocket() {
  const int descriptor = socket(AF_UNIX, SOCK_STREAM, 0);
  if (descriptor < 0) return -1;
  // There is no child process to race with, so a second call serves where macOS has no SOCK_CLOEXEC.
  fcntl(descriptor, F_SETFD, FD_CLOEXEC);
  suppressSigpipe(descriptor);
  return descriptor;
}

}  // namespace orvane::platform
