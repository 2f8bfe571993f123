// Ownership of a file descriptor.
#pragma once

#include <unistd.h>

#include <utility>

namespace orvane {

/// Closes the descriptor it holds when it goes. A negative value holds nothing.
class Descriptor {
 public:
  explicit Descriptor(int value = -1) : value_(value) {}
  ~Descriptor() {
    if (value_ >= 0) close(value_);
  }
  Descriptor(Descriptor&& other) noexcept : value_(std::exchange(other.value_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(value_, other.value_);
    return *this;
  }

  bool isOpen() const { return value_ >= 0; }
  int get() const { return value_; }
  /// Gives the descriptor to the caller, who closes it.
  int release() { return std::exchange(value_, -1); }

 private:
  int value_;
};

}  // namespace orvane
