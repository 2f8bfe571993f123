#include "bridge/app_bridge.h"

#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string>

#include "core/descriptor.h"
#include "core/descriptor_io.h"
#include "core/error_text.h"
#include "core/rpc_error.h"
#include "core/startup_values.h"
#include "platform/platform.h"
#include "protocol/mcp_mutation.h"
#include "protocol/mcp_socket_path.h"

namespace orvane {

namespace {

constexpr std::size_t maxResponseBytes = 1048576;
// No more than one read's worth beyond the limit is ever held.
constexpr std::size_t readSize = 4096;
constexpr time_t timeoutSeconds = 30;

// The codes an agent sees, beside those that JSON-RPC reserves.
constexpr int transportFailed = -32000;
constexpr int appNotRunning = -32001;
constexpr int malformedResponse = -32002;
constexpr int slotBudgetFull = -32011;
constexpr int consentDenied = -32012;
constexpr int consentPendingTimeout = -32013;
constexpr int tooManyRequests = -32014;
constexpr int peerNotPermitted = -32015;

int rpcCode(MCPMutationErrorCode code) {
  switch (code) {
    case MCPMutationErrorCode::validationFailed:
      return rpc_code::invalidParams;
    case MCPMutationErrorCode::slotBudgetFull:
      return slotBudgetFull;
    case MCPMutationErrorCode::consentPendingTimeout:
      return consentPendingTimeout;
    case MCPMutationErrorCode::consentDenied:
      return consentDenied;
    case MCPMutationErrorCode::appNotRunning:
      return appNotRunning;
    case MCPMutationErrorCode::tooManyRequests:
      return tooManyRequests;
    case MCPMutationErrorCode::peerNotPermitted:
      return peerNotPermitted;
    case MCPMutationErrorCode::internalError:
      break;
  }
  return rpc_code::internalError;
}

// Takes no std::string: making one could change errno before it is read.
[[noreturn]] void failTransport(const char* what, int errorNumber) {
  throw RPCError(transportFailed, what + errorText(errorNumber));
}

Descriptor openSocket() {
  Descriptor socket(platform::openUnixSocket());
  if (!socket.isOpen()) failTransport("socket() failed: ", errno);
  const timeval timeout{timeoutSeconds, 0};
  setsockopt(socket.get(), SOL_SOCKET, SO_RCVTIMEO, &timeout, sizeof timeout);
  setsockopt(socket.get(), SOL_SOCKET, SO_SNDTIMEO, &timeout, sizeof timeout);
  return socket;
}

void connectTo(const Descriptor& socket, const std::string& path) {
  if (path.size() > platform::maxSocketPathLength) throw RPCError(transportFailed, "socket path too long");
  const sockaddr_un address = platform::socketAddress(path);
  if (connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) return;
  if (errno == ENOENT || errno == ECONNREFUSED) {
    throw RPCError(appNotRunning, "Orvane app is not running — open the app and try again.");
  }
  failTransport("connect() failed: ", errno);
}

void checkPeer(const Descriptor& socket) {
  const platform::Peer peer = platform::peerOf(socket.get());
  if (peer.error != 0) failTransport("getpeereid() failed: ", peer.error);
  const uid_t own = getuid();
  if (peer.uid != own) {
    throw RPCError(peerNotPermitted, "Refusing to talk to MCP server: peer uid " + std::to_string(peer.uid) +
                                         " does not match this user's uid " + std::to_string(own) + ".");
  }
}

// The two keys belong to the server: the application sees them as they are set here or not at all.
JSON::Object withOrigin(JSON::Object args) {
  const StartupValues& values = startupValues();
  if (values.agentName.has_value()) {
    args.set("_agent", *values.agentName);
  } else {
    args.remove("_agent");
  }
  if (values.launchedByAssistant) {
    args.set("_origin", "assistant");
  } else {
    args.remove("_origin");
  }
  return args;
}

void writeAll(const Descriptor& socket, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written =
        retryInterrupted([&] { return send(socket.get(), bytes.data(), bytes.size(), platform::sendFlags()); });
    if (written < 0) failTransport("write() failed: ", errno);
    if (written == 0) throw RPCError(transportFailed, "write() returned 0 (peer closed?)");
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
}

std::string readToEnd(const Descriptor& socket) {
  std::string response;
  response.reserve(readSize);
  std::array<char, readSize> buffer;
  while (true) {
    const ssize_t received = retryInterrupted([&] { return read(socket.get(), buffer.data(), buffer.size()); });
    if (received == 0) return response;
    if (received < 0) failTransport("read() failed: ", errno);
    response.append(buffer.data(), static_cast<std::size_t>(received));
    if (response.size() > maxResponseBytes) throw RPCError(transportFailed, "response too large (>1 MiB)");
  }
}

[[noreturn]] void fail(MCPMutationFailure failure) {
  JSON::Object data;
  if (failure.data.has_value() && failure.data->asObject() != nullptr) data = std::move(*failure.data->asObject());
  data.set("code", rawValue(failure.code));
  throw RPCError(rpcCode(failure.code), std::move(failure.message), JSON(std::move(data)));
}

}  // namespace

JSON AppBridge::call(std::string_view method, const JSON::Object& args) {
  const std::string path = MCPSocketPath::resolve();
  const Descriptor socket = openSocket();
  connectTo(socket, path);
  checkPeer(socket);
  writeAll(socket, encodeMCPMutationRequest(method, withOrigin(args)));
  // The end of the stream tells the application that the request is complete.
  shutdown(socket.get(), SHUT_WR);
  MCPMutationDecodeResult response = decodeMCPMutationResponse(readToEnd(socket));
  if (auto* success = std::get_if<MCPMutationSuccess>(&response)) return std::move(success->result);
  if (auto* failure = std::get_if<MCPMutationFailure>(&response)) fail(std::move(*failure));
  throw RPCError(malformedResponse,
                 "Malformed response from Orvane: " + std::get<MCPMutationMalformed>(response).reason);
}

}  // namespace orvane
