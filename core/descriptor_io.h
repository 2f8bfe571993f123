// System calls on descriptors, carried through to their end: a signal that interrupts one and a write that takes only a
// part are not failures.
#pragma once

#include <cerrno>
#include <string_view>

namespace orvane {

/// The result of `call`, a system call that returns a negative value and sets errno on failure, repeated for as long as
/// a signal interrupts it.
template <class Call>
auto retryInterrupted(Call call) {
  auto result = call();
  while (result < 0 && errno == EINTR) result = call();
  return result;
}

/// Whether the errno value `error` says that a non-blocking descriptor has nothing to give, or no room, at the moment.
constexpr bool isNotReady(int error) {
  // POSIX has two names; they are one value on every system we know.
  static_assert(EAGAIN == EWOULDBLOCK);
  return error == EAGAIN;
}

/// Writes all of `bytes` to `descriptor`, in one call unless the system takes less. Returns 0, or the errno value of
/// the failure, after which a part may have been written. Never waits for a non-blocking descriptor: EAGAIN is a
/// failure.
int writeFully(int descriptor, std::string_view bytes);

/// Writes `line`, which ends in a newline, to standard error. What cannot be written is lost.
void writeDiagnostic(std::string_view line);

}  // namespace orvane
