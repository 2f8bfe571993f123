#include "protocol/mcp_mutation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "core/json_writer.h"
#include "tests/support/json_text.h"

namespace orvane::test {
namespace {

using Code = MCPMutationErrorCode;

const std::vector<std::pair<Code, std::string>> codes = {
    {Code::validationFailed, "validation_failed"},
    {Code::slotBudgetFull, "slot_budget_full"},
    {Code::consentPendingTimeout, "consent_pending_timeout"},
    {Code::consentDenied, "consent_denied"},
    {Code::appNotRunning, "app_not_running"},
    {Code::tooManyRequests, "too_many_requests"},
    {Code::peerNotPermitted, "peer_not_permitted"},
    {Code::internalError, "internal_error"},
};

const std::string noObject = "response was not a JSON object";
const std::string noError = "error response missing 'error' object";

/// What a decoded response is, on one line.
std::string described(std::string_view bytes) {
  const MCPMutationDecodeResult decoded = decodeMCPMutationResponse(bytes);
  if (const auto* success = std::get_if<MCPMutationSuccess>(&decoded)) {
    return "success " + writeCompactJSON(success->result);
  }
  if (const auto* failure = std::get_if<MCPMutationFailure>(&decoded)) {
    return "failure " + std::string(rawValue(failure->code)) + " \"" + failure->message + "\" " +
           (failure->data.has_value() ? writeCompactJSON(*failure->data) : "no data");
  }
  return "malformed " + std::get<MCPMutationMalformed>(decoded).reason;
}

TEST(MCPMutationErrorCodeTest, RawValuesGoBothWays) {
  for (const auto& [code, raw] : codes) {
    EXPECT_EQ(rawValue(code), raw);
    EXPECT_EQ(mcpMutationErrorCode(raw), code);
  }
}

TEST(MCPMutationErrorCodeTest, NoOtherStringNamesACode) {
  for (const char* raw : {"", "Validation_failed", "validation_failed ", " validation_failed", "validationFailed",
                          "VALIDATION_FAILED", "validation_faile", "unknown"}) {
    EXPECT_EQ(mcpMutationErrorCode(raw), std::nullopt) << raw;
  }
  EXPECT_EQ(mcpMutationErrorCode(std::string_view("internal_error\0", 15)), std::nullopt);
}

TEST(EncodeRequestTest, WritesMethodAndArgumentsAndOneLineFeed) {
  const std::string bytes = encodeMCPMutationRequest("set_input_device", {{"name", "USB Mic"}});
  EXPECT_EQ(bytes.back(), '\n');
  EXPECT_EQ(std::count(bytes.begin(), bytes.end(), '\n'), 1);
  EXPECT_EQ(canonical(bytes), canonical(R"({"method":"set_input_device","args":{"name":"USB Mic"}})"));
  EXPECT_EQ(canonical(encodeMCPMutationRequest("get_insights", {})),
            canonical(R"({"method":"get_insights","args":{}})"));
}

TEST(EncodeRequestTest, IsCompactWithPlainSlashes) {
  const std::string bytes = encodeMCPMutationRequest("a/b", {{"path/", "x/y"}, {"lines", "1\n2"}});
  EXPECT_EQ(bytes.find("\\/"), std::string::npos);
  EXPECT_NE(bytes.find("x/y"), std::string::npos);
  EXPECT_EQ(bytes.find(' '), std::string::npos);
  EXPECT_EQ(bytes.find('\n'), bytes.size() - 1);
}

TEST(EncodeRequestTest, ArgumentsPassUntouched) {
  const std::string args =
      R"({"":null,"n":1.50,"big":1180591620717411303424,"e":1E400,"a":[[],{},"\u0000 é €"],"o":{"_agent":1}})";
  const MCPMutationRequestDecodeResult decoded =
      decodeMCPMutationRequest(encodeMCPMutationRequest("m", parsedObject(args)));
  const auto* request = std::get_if<MCPMutationRequest>(&decoded);
  ASSERT_NE(request, nullptr);
  EXPECT_EQ(request->method, "m");
  EXPECT_EQ(request->args, parsedObject(args));
}

TEST(EncodeTest, TextThatIsNotUTF8IsTheWritersError) {
  EXPECT_THROW(encodeMCPMutationRequest("\xFF", {}), JSONWriteError);
  EXPECT_THROW(encodeMCPMutationRequest("m", {{"a", "\xFF"}}), JSONWriteError);
  EXPECT_THROW(encodeMCPMutationSuccess("\xFF"), JSONWriteError);
  EXPECT_THROW(encodeMCPMutationError(Code::internalError, "\xFF"), JSONWriteError);
  EXPECT_THROW(encodeMCPMutationError(Code::internalError, "m", JSON("\xFF")), JSONWriteError);
}

TEST(EncodeSuccessTest, TakesAnyValue) {
  for (const char* result : {"{}", "[]", R"({"path":"a/b"})", "null", "true", "1.50", "\"text\"", "[1,[2]]"}) {
    const std::string bytes = encodeMCPMutationSuccess(parsed(result));
    EXPECT_EQ(bytes.find('\n'), bytes.size() - 1);
    EXPECT_EQ(canonical(bytes), canonical(R"({"ok":true,"result":)" + std::string(result) + "}"));
    EXPECT_EQ(bytes.find("\\/"), std::string::npos);
    EXPECT_EQ(described(bytes), "success " + std::string(result));
  }
}

TEST(EncodeErrorTest, HoldsCodeAndMessageAndDataOnlyIfGiven) {
  const std::string bytes = encodeMCPMutationError(Code::consentDenied, "a/b");
  EXPECT_EQ(bytes.find('\n'), bytes.size() - 1);
  EXPECT_EQ(bytes.find("\\/"), std::string::npos);
  EXPECT_EQ(canonical(bytes), canonical(R"({"ok":false,"error":{"code":"consent_denied","message":"a/b"}})"));
  for (const char* data : {"null", "{}", "[1]", "\"x\"", "0"}) {
    EXPECT_EQ(
        canonical(encodeMCPMutationError(Code::slotBudgetFull, "", parsed(data))),
        canonical(R"({"ok":false,"error":{"code":"slot_budget_full","message":"","data":)" + std::string(data) + "}}"));
  }
}

TEST(EncodeErrorTest, EveryCodeTravelsBothWays) {
  for (const auto& [code, raw] : codes) {
    EXPECT_EQ(described(encodeMCPMutationError(code, "why")), "failure " + raw + " \"why\" no data");
    EXPECT_EQ(described(encodeMCPMutationError(code, "why", parsed(R"({"code":"x"})"))),
              "failure " + raw + R"( "why" {"code":"x"})");
  }
}

TEST(DecodeResponseTest, BytesThatAreNoObjectAreMalformed) {
  for (const char* bytes :
       {"", " ", "\n", "[]", "[{\"ok\":true}]", "1", "true", "null", "\"ok\"", "{", "not JSON",
        "{\"ok\":true}{\"ok\":true}", "{\"ok\":true}\nx", "{\"ok\":true,}", "{\"ok\":tru",
        "{\"ok\":true,\"result\":\"\xFF\"}", "{\"ok\":true,\"result\":\"\\ud800\"}", "\xEF\xBB\xBF{\"ok\":true}"}) {
    EXPECT_EQ(described(bytes), "malformed " + noObject) << bytes;
  }
  EXPECT_EQ(described(std::string_view("{\"ok\":true}\0", 12)), "malformed " + noObject);
}

TEST(DecodeResponseTest, WhiteSpaceAroundIsAllowed) {
  EXPECT_EQ(described("\r\n {\"ok\": true, \"result\": [1]}\n\n"), "success [1]");
}

TEST(DecodeResponseTest, TrueIsSuccess) {
  EXPECT_EQ(described(R"({"ok":true,"result":{"a":1.50}})"), R"(success {"a":1.50})");
  EXPECT_EQ(described(R"({"ok":true})"), "success {}");
  EXPECT_EQ(described(R"({"ok":true,"result":null})"), "success null");
  EXPECT_EQ(described(R"({"ok":true,"result":5})"), "success 5");
  EXPECT_EQ(described(R"({"ok":true,"result":false})"), "success false");
  EXPECT_EQ(described(R"({"ok":true,"error":{"code":"consent_denied"}})"), "success {}");
  EXPECT_EQ(described(R"({"ok":true,"result":1,"error":"x","more":2})"), "success 1");
  EXPECT_EQ(described(R"({"ok":false,"ok":true})"), "success {}") << "the later duplicate counts";
  EXPECT_EQ(described(R"({"\u006fk":true,"result":1})"), "success 1");
}

TEST(DecodeResponseTest, AnythingButTrueIsNoSuccess) {
  for (const char* ok : {R"("ok":false)", R"("ok":"true")", R"("ok":1)", R"("ok":null)", R"("ok":[true])", R"("ok":{})",
                         R"("OK":true)", R"("ok":true,"ok":1)"}) {
    const std::string head = "{" + std::string(ok) + R"(,"result":{})";
    EXPECT_EQ(described(head + "}"), "malformed " + noError) << ok;
    EXPECT_EQ(described(head + R"(,"error":{"code":"too_many_requests","message":"m"}})"),
              "failure too_many_requests \"m\" no data")
        << ok;
  }
}

TEST(DecodeResponseTest, AMissingOrOddErrorIsMalformed) {
  EXPECT_EQ(described("{}"), "malformed " + noError);
  for (const char* error : {"\"text\"", "null", "[]", "1", "true"}) {
    EXPECT_EQ(described(R"({"ok":false,"error":)" + std::string(error) + "}"), "malformed " + noError) << error;
  }
}

TEST(DecodeResponseTest, AnErrorNeedsNoOk) {
  EXPECT_EQ(described(R"({"error":{"code":"consent_denied","message":"no"}})"),
            "failure consent_denied \"no\" no data");
}

TEST(DecodeResponseTest, DefectsInsideTheErrorHaveDefaults) {
  EXPECT_EQ(described(R"({"ok":false,"error":{}})"), "failure internal_error \"Unknown error\" no data");
  for (const char* code : {"\"Consent_Denied\"", "\"\"", "\"new_code\"", "5", "null", "{}", "[\"consent_denied\"]"}) {
    EXPECT_EQ(described(R"({"ok":false,"error":{"message":"m","code":)" + std::string(code) + "}}"),
              "failure internal_error \"m\" no data")
        << code;
  }
  for (const char* message : {"5", "null", "{}", "[]", "false"}) {
    EXPECT_EQ(described(R"({"ok":false,"error":{"code":"app_not_running","message":)" + std::string(message) + "}}"),
              "failure app_not_running \"Unknown error\" no data")
        << message;
  }
  EXPECT_EQ(described(R"({"ok":false,"error":{"message":""}})"), "failure internal_error \"\" no data");
}

TEST(DecodeResponseTest, DataIsTakenWhateverItsType) {
  for (const char* data : {"null", "{}", R"({"code":"mine","a":[1]})", "[1,2]", "\"text\"", "1.50", "false"}) {
    EXPECT_EQ(described(R"({"error":{"data":)" + std::string(data) + "}}"),
              "failure internal_error \"Unknown error\" " + std::string(data));
  }
}

TEST(DecodeResponseTest, NestingBeyondTheReadersLimitIsMalformed) {
  const auto response = [](std::size_t levels) { return R"({"ok":true,"result":)" + nestedArrays(levels) + "}"; };
  EXPECT_EQ(described(response(maxReadNesting - 1)), "success " + nestedArrays(maxReadNesting - 1));
  EXPECT_EQ(described(response(maxReadNesting)), "malformed " + noObject);
  EXPECT_EQ(described(response(500000)), "malformed " + noObject);
}

TEST(DecodeRequestTest, TakesMethodAndArguments) {
  const auto decode = [](std::string_view bytes) {
    const MCPMutationRequestDecodeResult decoded = decodeMCPMutationRequest(bytes);
    if (const auto* malformed = std::get_if<MCPMutationMalformed>(&decoded)) return "malformed " + malformed->reason;
    const auto& request = std::get<MCPMutationRequest>(decoded);
    return request.method + " " + writeCompactJSON(request.args);
  };
  EXPECT_EQ(decode("{\"method\":\"speak\",\"args\":{\"text\":\"a/b\",\"_origin\":\"assistant\"}}\n"),
            R"(speak {"text":"a/b","_origin":"assistant"})");
  EXPECT_EQ(decode(R"({"args":{"a":1},"method":"m","more":1})"), R"(m {"a":1})");
  EXPECT_EQ(decode(R"({"method":"m"})"), "m {}");
  EXPECT_EQ(decode(R"({"method":""})"), " {}");
  for (const char* bytes : {"", "[]", "1", "{", "{\"method\":\"m\"} x", "null"}) {
    EXPECT_EQ(decode(bytes), "malformed request was not a JSON object") << bytes;
  }
  for (const char* bytes : {"{}", R"({"method":5})", R"({"method":null})", R"({"Method":"m"})"}) {
    EXPECT_EQ(decode(bytes), "malformed request missing 'method' string") << bytes;
  }
  for (const char* args : {"null", "[]", "1", "\"x\"", "true"}) {
    EXPECT_EQ(decode(R"({"method":"m","args":)" + std::string(args) + "}"), "malformed request 'args' is not an object")
        << args;
  }
}

}  // namespace
}  // namespace orvane::test
