#include "core/descriptor_io.h"

#include <unistd.h>

namespace orvane {

int writeFully(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = retryInterrupted([&] { return write(descriptor, bytes.data(), bytes.size()); });
    if (written < 0) return errno;
    // Nothing taken and nothing wrong: trying again might never end.
    if (written == 0) return EIO;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return 0;
}

void writeDiagnostic(std::string_view line) { writeFully(STDERR_FILENO, line); }

}  // namespace orvane
