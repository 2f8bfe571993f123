// The server: one request line in, at most one response line out, until the input ends. transport.cpp holds the bytes,
// dispatcher.cpp the meaning.
#pragma once

// Standard C calls its streams by macros; with them seen here first, the fields have one name in every file.
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

#include "core/json.h"
#include "core/rpc_error.h"
#include "server/line_input.h"
#include "server/output_handle.h"
#include "server/registry.h"

namespace orvane {

/// The longest request line in bytes, its line feed not counted.
inline constexpr std::size_t maxLineBytes = 1048576;

/// The deepest nesting of a request: the message itself is level 1, its members are level 2.
inline constexpr int maxMessageDepth = 32;

/// Stands for the list of tools, whose text the registry keeps.
struct ToolListing {};

/// What a tool returned: an object or an array.
struct ToolOutcome {
  JSON value;
};

/// What a method returns. Results that are large or ready have forms of their own, so that they are written once.
using MethodResult = std::variant<JSON, ToolListing, ToolOutcome>;

class Server {
 public:
  /// Serves the tools of `toolRegistry` over the three descriptors, which stay the caller's.
  Server(ToolRegistry toolRegistry, int input, int output, int diagnostics)
      : registry(std::move(toolRegistry)), stdin(input), stdout(output), stderr(diagnostics) {}

  /// Reads and handles lines, one after another, until the input ends.
  void run();

  /// The next line without its line feed. Empty for a line that was dropped: longer than maxLineBytes (reported to
  /// stderr when its line feed arrives) or not UTF-8. Nothing at end of input, which a failed read and an unterminated
  /// last line that is not UTF-8 count as.
  std::optional<std::string> readLine();

  /// Writes `message` and a line feed to stdout. A message that cannot be serialised is reported to stderr instead.
  void writeMessage(const JSON& message);

  /// Handles one request line: writes one response, or none if it is a notification. Throws nothing; a request for
  /// which the memory does not suffice is answered with an internal error.
  void handleLine(std::string_view line);

  /// Runs an MCP method. Throws RPCError, and whatever else a tool throws.
  MethodResult dispatchMethod(std::string_view method, const JSON::Object& params);

 private:
  void handleRequest(std::string_view line);
  void writeResult(const JSON& id, const JSON& result);
  void writeResult(const JSON& id, ToolListing);
  void writeResult(const JSON& id, const ToolOutcome& outcome);
  void sendError(const JSON& id, const RPCError& error);
  void reportUnwritableResponse();
  void writeDiagnostic(std::string_view line);

  ToolRegistry registry;
  LineInput stdin;
  OutputHandle stdout;
  OutputHandle stderr;
};

}  // namespace orvane
