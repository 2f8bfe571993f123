// The server's loop inside the test process: a whole input goes in by a pipe, and what it writes comes back.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/json.h"
#include "server/server.h"

namespace orvane::test {

/// What a server wrote.
struct ServerOutput {
  std::string output;
  std::string diagnostics;

  /// The messages on standard output; fails the test if a line is not one JSON object or lacks its line feed.
  std::vector<JSON> messages() const;
};

/// A registry of all tools.
ToolRegistry fullRegistry();

/// Runs a server over `input` to its end.
ServerOutput runServer(std::string_view input, ToolRegistry registry = fullRegistry());

/// Has a server handle `line` and nothing else.
ServerOutput handleOneLine(std::string_view line, ToolRegistry registry = fullRegistry());

/// The one response to the request `line`, in one form; "" if there is none.
std::string answerTo(std::string_view line);

}  // namespace orvane::test
