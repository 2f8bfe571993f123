// Where the application listens.
#pragma once

#include <string>

namespace orvane {

class MCPSocketPath {
 public:
  /// The path of the application's socket: "Orvane/mcp.sock" in the user's Application Support directory, as the
  /// platform gives it at this moment. Nothing overrides it; server and application find each other by this rule alone.
  static std::string resolve();
};

}  // namespace orvane
