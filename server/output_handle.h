// Writing whole lines to one of the process's standard streams.
#pragma once

#include <span>
#include <string_view>

namespace orvane {

class OutputHandle {
 public:
  /// Writes to `descriptor`, which stays the caller's.
  explicit OutputHandle(int descriptor) : descriptor_(descriptor) {}

  /// Writes `pieces` one after another, by one vectored write where the system takes all of it (at most 8 pieces).
  /// Completes partial writes and waits where the descriptor is in non-blocking mode. A failure is not reported; if it
  /// cut a line short, nothing more is ever written, so that no later line can run into the broken one.
  void write(std::span<const std::string_view> pieces);

 private:
  int descriptor_;
  bool isBroken_ = false;
};

}  // namespace orvane
