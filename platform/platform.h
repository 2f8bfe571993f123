// What only the operating system can answer. posix.cpp holds what the systems share, linux.cpp and darwin.cpp the calls
// that differ. Who the user is, and what is the user's, is in linux_user.cpp, or macos.mm and darwin_peer.cpp; unit
// tests link their own answers in place of these.
#pragma once

#include <sys/socket.h>
#include <sys/types.h>
#include <sys/un.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace orvane::platform {

/// The current user's home directory, from the system's own service and not from HOME.
std::string homeDirectory();

/// The current user's Application Support directory, where the system has such a thing.
std::optional<std::string> applicationSupportDirectory();

/// The strings under `key` in the preferences domain `domain` of another application. Empty where the domain or key is
/// missing or the value is anything but an array of strings.
std::vector<std::string> preferencesStringArray(const std::string& domain, const std::string& key);

/// Starts playing the system sound `name` elsewhere and returns at once; nothing happens where there is none.
void playSystemSound(const std::string& name);

/// Who is at the other end of a connected Unix-domain socket.
struct Peer {
  int error;  ///< 0, or the errno value with which the system refused to tell
  uid_t uid;  ///< the peer's effective user id; meaningless unless error is 0
};

/// Asks the system for the peer of `socket`.
Peer peerOf(int socket);

/// Keeps writes to `socket` from raising SIGPIPE, on systems where this is a property of the socket.
void suppressSigpipe(int socket);

/// Flags for send(2) that keep it from raising SIGPIPE, on systems where this is a property of the call.
int sendFlags();

/// The address of the Unix-domain socket at `path`, which must fit: at most maxSocketPathLength bytes.
sockaddr_un socketAddress(const std::string& path);

/// The longest socket path in bytes that every supported system takes: macOS has room for 104 with the final zero.
inline constexpr std::size_t maxSocketPathLength = 103;

/// Makes the data of the open file `descriptor` durable. Returns 0, or -1 with errno set.
int flushToDisk(int descriptor);

/// Gives the calling thread a name for debuggers and traces; cut to what the system allows.
void nameThread(const char* name);

/// Tells the allocator to keep some MiB of freed memory instead of giving it back at once: a large request would
/// otherwise cost mostly page faults. For start-up.
void keepFreedMemory();

/// Opens a stream socket of the Unix domain that no child process inherits. Returns -1 with errno set on failure.
int openUnixSocket();

}  // namespace orvane::platform
