// The messages that the server and the desktop application exchange over the socket: values to bytes and back. Both
// programs compile this module; nothing in it touches a socket. A message is one JSON object and a line feed; the end
// of the stream ends it. The protocol calls every request a mutation, although some methods only read.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "core/json.h"

namespace orvane {

/// Why the application refuses or fails a request. The raw values travel on the wire.
enum class MCPMutationErrorCode {
  validationFailed,       ///< "validation_failed": the application rejected the arguments
  slotBudgetFull,         ///< "slot_budget_full": no slot is left for an augment
  consentPendingTimeout,  ///< "consent_pending_timeout": the user did not answer the question for consent in time
  consentDenied,          ///< "consent_denied": the user refused consent
  appNotRunning,          ///< "app_not_running": the part of the application that serves the method is not available
  tooManyRequests,        ///< "too_many_requests": the application limits the caller's rate
  peerNotPermitted,       ///< "peer_not_permitted": the application does not serve this client process
  internalError,          ///< "internal_error": anything else, and every code this side does not know
};

/// The wire form of `code`.
std::string_view rawValue(MCPMutationErrorCode code);

/// The code whose wire form is exactly `rawValue`, if there is one.
std::optional<MCPMutationErrorCode> mcpMutationErrorCode(std::string_view rawValue);

/// A response that carries a result: any JSON value.
struct MCPMutationSuccess {
  JSON result;
};

/// A response that carries an error.
struct MCPMutationFailure {
  MCPMutationErrorCode code;
  std::string message;
  std::optional<JSON> data;  ///< of any JSON type; absent when the application gave none
};

/// Bytes that are no message of this protocol.
struct MCPMutationMalformed {
  std::string reason;
};

/// What a response decodes to.
using MCPMutationDecodeResult = std::variant<MCPMutationSuccess, MCPMutationFailure, MCPMutationMalformed>;

/// A request as the application receives it.
struct MCPMutationRequest {
  std::string method;
  JSON::Object args;
};

/// What a request decodes to.
using MCPMutationRequestDecodeResult = std::variant<MCPMutationRequest, MCPMutationMalformed>;

/// The request {"method", "args"} and a line feed, in UTF-8 with plain slashes. Throws JSONWriteError if a string is
/// not valid UTF-8; so do the two functions below.
std::string encodeMCPMutationRequest(std::string_view method, const JSON::Object& args);

/// The response {"ok": true, "result"} and a line feed. For the application.
std::string encodeMCPMutationSuccess(const JSON& result);

/// The response {"ok": false, "error": {"code", "message", "data"}} and a line feed; "data" only if given. For the
/// application.
std::string encodeMCPMutationError(MCPMutationErrorCode code, std::string_view message,
                                   const std::optional<JSON>& data = std::nullopt);

/// What a response says. `bytes` is everything received up to the end of the stream. Never throws for bad bytes: each
/// defect is MCPMutationMalformed, except that an unknown code counts as internalError and a missing message as
/// "Unknown error".
MCPMutationDecodeResult decodeMCPMutationResponse(std::string_view bytes);

/// What a request says; for the application. A missing "args" counts as no arguments. Never throws for bad bytes.
MCPMutationRequestDecodeResult decodeMCPMutationRequest(std::string_view bytes);

}  // namespace orvane
