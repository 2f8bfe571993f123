// The JSON-RPC 2.0 error object, as it is thrown through the server.
#pragma once

#include <exception>
#include <optional>
#include <string>
#include <utility>

#include "core/json.h"

namespace orvane {

/// The codes that JSON-RPC 2.0 reserves in its section 5.1.
namespace rpc_code {
inline constexpr int parseError = -32700;
inline constexpr int invalidRequest = -32600;
inline constexpr int methodNotFound = -32601;
inline constexpr int invalidParams = -32602;
inline constexpr int internalError = -32603;
}  // namespace rpc_code

/// Thrown by the dispatcher, the registry, the bridge and tools; one place, Server::handleLine, makes it a response.
struct RPCError : std::exception {
  RPCError(int errorCode, std::string errorMessage, std::optional<JSON> errorData = std::nullopt)
      : code(errorCode), message(std::move(errorMessage)), data(std::move(errorData)) {}

  const char* what() const noexcept override { return message.c_str(); }

  int code;                  ///< the JSON-RPC error code
  std::string message;       ///< human-readable, sent as it is
  std::optional<JSON> data;  ///< further detail, sent only when present
};

}  // namespace orvane
