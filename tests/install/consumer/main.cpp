// A program that uses the installed protocol library as the desktop application does: a request there, an answer back.
#include <cstdio>
#include <string>
#include <variant>

#include "core/json_reader.h"
#include "core/json_writer.h"
#include "protocol/mcp_mutation.h"
#include "protocol/mcp_socket_path.h"

namespace {

int fail(const char* what) {
  std::fprintf(stderr, "%s\n", what);
  return 1;
}

}  // namespace

int main() {
  const std::optional<orvane::JSON::Object> arguments =
      orvane::readJSONObject(R"({"name":"Prüf-Mikrofon","gain":1e400})");
  if (!arguments) return fail("the arguments are not read");
  const std::string bytes = orvane::encodeMCPMutationRequest("set_input_device", *arguments);
  const auto decoded = orvane::decodeMCPMutationRequest(bytes);
  const auto* request = std::get_if<orvane::MCPMutationRequest>(&decoded);
  if (request == nullptr) return fail("the request does not come back");
  if (request->method != "set_input_device") return fail("the method changed");
  if (orvane::writeCompactJSON(request->args) != orvane::writeCompactJSON(*arguments))
    return fail("an argument changed");

  const std::string refusal = orvane::encodeMCPMutationError(orvane::MCPMutationErrorCode::consentDenied, "No.");
  const orvane::MCPMutationDecodeResult response = orvane::decodeMCPMutationResponse(refusal);
  const auto* failure = std::get_if<orvane::MCPMutationFailure>(&response);
  if (failure == nullptr || failure->code != orvane::MCPMutationErrorCode::consentDenied || failure->message != "No.") {
    return fail("the refusal does not come back");
  }
  if (std::get_if<orvane::MCPMutationMalformed>(&response) != nullptr) return fail("the refusal is malformed");

  std::puts(orvane::MCPSocketPath::resolve().c_str());
  return 0;
}
