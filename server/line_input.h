// Reading a stream of lines without ever taking a byte that belongs to a later line: while one request is served, the
// next still lies in the pipe, for whoever inherits the descriptor. Where the descriptor lets us look without taking
// (sockets, regular files, pipes on Linux), we look first and then take exactly the line; elsewhere, one byte at a
// time.
#pragma once

#include <sys/types.h>

#include <memory>
#include <string_view>

#include "platform/pipe_peek.h"

namespace orvane {

class LineInput {
 public:
  /// Reads from `descriptor`, which stays the caller's.
  explicit LineInput(int descriptor) : descriptor_(descriptor) {}

  /// Takes the next bytes from the descriptor, at least one; a line feed is always the last of them. Empty at end of
  /// file and after a failed read, which count alike. Valid until the next call. Waits for data also where the
  /// descriptor is in non-blocking mode.
  std::string_view take();

 private:
  enum class Way { unknown, socket, pipe, file, byteByByte };

  void chooseWay();
  bool look();
  ssize_t peek();
  bool takeMore();

  int descriptor_;
  Way way_ = Way::unknown;
  platform::PipePeek pipePeek_;
  std::unique_ptr<char[]> seenBuffer_;
  std::unique_ptr<char[]> takenBuffer_;
  std::string_view seen_;   // what lies ahead in the descriptor, as far as it was looked at
  std::string_view taken_;  // what was taken and is still to be returned
};

}  // namespace orvane
