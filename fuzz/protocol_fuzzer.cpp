// The decoders of the application's protocol: any bytes decode, and what was decoded survives being encoded again.
#include <string_view>

#include "core/json_reader.h"
#include "fuzz/require.h"
#include "protocol/mcp_mutation.h"

namespace {

using namespace orvane;
using orvane::fuzz::require;

bool isOneLine(std::string_view message) { return message.find('\n') == message.size() - 1; }

void tryResponse(std::string_view bytes) {
  const MCPMutationDecodeResult result = decodeMCPMutationResponse(bytes);
  if (const auto* malformed = std::get_if<MCPMutationMalformed>(&result)) {
    require(malformed->reason == (readJSONObject(bytes).has_value() ? "error response missing 'error' object"
                                                                    : "response was not a JSON object"),
            "a malformed response has one of two reasons");
  } else if (const auto* success = std::get_if<MCPMutationSuccess>(&result)) {
    const std::string again = encodeMCPMutationSuccess(success->result);
    require(isOneLine(again), "a message is one line");
    const MCPMutationDecodeResult second = decodeMCPMutationResponse(again);
    const auto* kept = std::get_if<MCPMutationSuccess>(&second);
    require(kept != nullptr && kept->result == success->result, "a result survives");
  } else {
    const auto& failure = std::get<MCPMutationFailure>(result);
    const std::string again = encodeMCPMutationError(failure.code, failure.message, failure.data);
    require(isOneLine(again), "a message is one line");
    const MCPMutationDecodeResult second = decodeMCPMutationResponse(again);
    const auto* kept = std::get_if<MCPMutationFailure>(&second);
    require(
        kept != nullptr && kept->code == failure.code && kept->message == failure.message && kept->data == failure.data,
        "a failure survives");
  }
}

void tryRequest(std::string_view bytes) {
  const MCPMutationRequestDecodeResult result = decodeMCPMutationRequest(bytes);
  const auto* request = std::get_if<MCPMutationRequest>(&result);
  if (request == nullptr) return;
  const std::string again = encodeMCPMutationRequest(request->method, request->args);
  require(isOneLine(again), "a message is one line");
  const MCPMutationRequestDecodeResult second = decodeMCPMutationRequest(again);
  const auto* kept = std::get_if<MCPMutationRequest>(&second);
  require(kept != nullptr && kept->method == request->method && kept->args == request->args, "a request survives");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  tryResponse(bytes);
  tryRequest(bytes);
  return 0;
}
