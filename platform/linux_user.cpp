// Linux, where the server is built and tested: the user and the user's surroundings. It has no Application Support
// directory, no preferences domains and no system sounds, so those answers are "none".
#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <mutex>

#include "platform/platform.h"

namespace orvane::platform {

namespace {

// Empty where the user database does not know the user, or cannot be read at this moment.
std::string lookUpHomeDirectory() {
  std::vector<char> buffer(1024);
  passwd entry{};
  passwd* found = nullptr;
  int error = 0;
  while ((error = getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found)) == ERANGE) {
    buffer.resize(buffer.size() * 2);
  }
  if (error == 0 && found != nullptr && found->pw_dir[0] == '/') return found->pw_dir;
  return {};
}

}  // namespace

std::string homeDirectory() {
  // A home does not move while a process runs, and reading the user database costs more than most requests.
  static std::mutex mutex;
  // Never destroyed: a thread may ask while the process ends.
  static std::string& home = *new std::string;
  const std::lock_guard lock(mutex);
  if (home.empty()) home = lookUpHomeDirectory();
  // A directory that neither exists nor can be made by a user stands in for a home that the system does not know.
  return home.empty() ? "/var/empty" : home;
}

std::optional<std::string> applicationSupportDirectory() { return std::nullopt; }

std::vector<std::string> preferencesStringArray(const std::string&, const std::string&) { return {}; }

void playSystemSound(const std::string&) {}

Peer peerOf(int socket) {
  ucred credentials{};
  socklen_t length = sizeof credentials;
  if (getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &credentials, &length) != 0) return {errno, 0};
  return {0, credentials.uid};
}

}  // namespace orvane::platform
