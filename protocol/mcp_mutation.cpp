#include "protocol/mcp_mutation.h"

#include <algorithm>
#include <array>

#include "core/json_reader.h"
#include "core/json_writer.h"

namespace orvane {

namespace {

struct CodeName {
  MCPMutationErrorCode code;
  std::string_view rawValue;
};

constexpr std::array codeNames{
    CodeName{MCPMutationErrorCode::validationFailed, "validation_failed"},
    CodeName{MCPMutationErrorCode::slotBudgetFull, "slot_budget_full"},
    CodeName{MCPMutationErrorCode::consentPendingTimeout, "consent_pending_timeout"},
    CodeName{MCPMutationErrorCode::consentDenied, "consent_denied"},
    CodeName{MCPMutationErrorCode::appNotRunning, "app_not_running"},
    CodeName{MCPMutationErrorCode::tooManyRequests, "too_many_requests"},
    CodeName{MCPMutationErrorCode::peerNotPermitted, "peer_not_permitted"},
    CodeName{MCPMutationErrorCode::internalError, "internal_error"},
};

std::string stringOr(const JSON* value, std::string_view fallback) {
  const std::string* text = value == nullptr ? nullptr : value->asString();
  return text == nullptr ? std::string(fallback) : *text;
}

}  // namespace

std::string_view rawValue(MCPMutationErrorCode code) {
  return std::find_if(codeNames.begin(), codeNames.end(), [&](const CodeName& name) { return name.code == code; })
      ->rawValue;
}

std::optional<MCPMutationErrorCode> mcpMutationErrorCode(std::string_view rawValue) {
  const auto* const name = std::find_if(codeNames.begin(), codeNames.end(),
                                        [&](const CodeName& candidate) { return candidate.rawValue == rawValue; });
  if (name == codeNames.end()) return std::nullopt;
  return name->code;
}

std::string encodeMCPMutationRequest(std::string_view method, const JSON::Object& args) {
  std::string bytes = R"({"method":)";
  appendCompactJSON(bytes, JSON(method));
  bytes += R"(,"args":)";
  appendCompactJSON(bytes, args);
  bytes += "}\n";
  return bytes;
}

std::string encodeMCPMutationSuccess(const JSON& result) {
  std::string bytes = R"({"ok":true,"result":)";
  appendCompactJSON(bytes, result);
  bytes += "}\n";
  return bytes;
}

std::string encodeMCPMutationError(MCPMutationErrorCode code, std::string_view message,
                                   const std::optional<JSON>& data) {
  JSON::Object error{{"code", rawValue(code)}, {"message", message}};
  if (data.has_value()) error.set("data", *data);
  std::string bytes = R"({"ok":false,"error":)";
  appendCompactJSON(bytes, error);
  bytes += "}\n";
  return bytes;
}

MCPMutationDecodeResult decodeMCPMutationResponse(std::string_view bytes) {
  std::optional<JSON::Object> response = readJSONObject(bytes);
  if (!response.has_value()) return MCPMutationMalformed{"response was not a JSON object"};

  const JSON* okMember = response->find("ok");
  const bool* ok = okMember == nullptr ? nullptr : okMember->asBool();
  if (ok != nullptr && *ok) {
    std::optional<JSON> result = response->take("result");
    return MCPMutationSuccess{result.has_value() ? *std::move(result) : JSON(JSON::Object{})};
  }

  const JSON* errorMember = response->find("error");
  const JSON::Object* error = errorMember == nullptr ? nullptr : errorMember->asObject();
  if (error == nullptr) return MCPMutationMalformed{"error response missing 'error' object"};
  const JSON* data = error->find("data");
  return MCPMutationFailure{mcpMutationErrorCode(stringOr(error->find("code"), "internal_error"))
                                .value_or(MCPMutationErrorCode::internalError),
                            stringOr(error->find("message"), "Unknown error"),
                            data == nullptr ? std::nullopt : std::optional(*data)};
}

MCPMutationRequestDecodeResult decodeMCPMutationRequest(std::string_view bytes) {
  std::optional<JSON::Object> request = readJSONObject(bytes);
  if (!request.has_value()) return MCPMutationMalformed{"request was not a JSON object"};
  const JSON* method = request->find("method");
  if (method == nullptr || method->asString() == nullptr)
    return MCPMutationMalformed{"request missing 'method' string"};
  std::string name = *method->asString();
  std::optional<JSON> args = request->take("args");
  if (!args.has_value()) return MCPMutationRequest{std::move(name), {}};
  if (args->asObject() == nullptr) return MCPMutationMalformed{"request 'args' is not an object"};
  return MCPMutationRequest{std::move(name), std::move(*args->asObject())};
}

}  // namespace orvane
