// A repeated attack on the real program: its answers are counted, and what the program holds afterwards is compared
// with what it held before.
#pragma once

#include <string>
#include <string_view>

#include "tests/support/server_process.h"

namespace orvane::test {

/// The code of an error response, 0 of a result.
int errorCode(const Json& response);

class Attack {
 public:
  /// Begins now. What the program takes in once and for all, it should have taken in by an earlier round.
  Attack(ServerProcess& server, std::string name);

  /// Sends `line`, counts the answer and returns it.
  Json request(std::string_view line);
  /// Counts answers that were taken otherwise.
  void countAnswers(int count) { answers_ += count; }

  /// Expects as many descriptors as at the start and, where memory can be measured, no more of it than the allocator
  /// needs for its own order. Prints the figures and records them with the running test.
  void expectNothingKept() const;

 private:
  ServerProcess& server_;
  std::string name_;
  int answers_ = 0;
  int errors_ = 0;
  std::size_t descriptors_;
  std::optional<std::size_t> memory_;
};

}  // namespace orvane::test
