#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/rpc_error.h"
#include "core/startup_values.h"
#include "tests/support/bridge_call.h"
#include "tests/support/fake_platform.h"
#include "tests/support/json_text.h"
#include "tests/support/server_run.h"
#include "tools/local/version.h"

namespace orvane::test {
namespace {

std::string resultFor(std::string_view id, std::string_view result) {
  return canonical(R"({"jsonrpc":"2.0","id":)" + std::string(id) + R"(,"result":)" + std::string(result) + "}");
}

std::string errorFor(std::string_view id, int code, const std::string& message) {
  return writePrettyJSON(JSON::Object{
      {"jsonrpc", "2.0"}, {"id", parsed(id)}, {"error", JSON::Object{{"code", code}, {"message", message}}}});
}

const std::string parseError = errorFor("null", -32700, "Parse error");
const std::string depthError = errorFor("null", -32600, "Request exceeds max depth");

class DispatcherTest : public testing::Test {
 protected:
  void TearDown() override { setStartupValues({}); }

  /// The text of the tool's result; fails the test if the answer is anything but a tool result.
  static std::string toolText(std::string_view line) {
    const JSON::Object message = parsedObject(answerTo(line));
    const JSON* result = message.find("result");
    if (result == nullptr) {
      ADD_FAILURE() << writeCompactJSON(message);
      return {};
    }
    const JSON::Object& object = *result->asObject();
    EXPECT_EQ(object.size(), 2U);
    EXPECT_EQ(*object.find("isError"), JSON(false));
    const JSON::Array& content = *object.find("content")->asArray();
    EXPECT_EQ(content.size(), 1U);
    const JSON::Object& item = *content.at(0).asObject();
    EXPECT_EQ(item.size(), 2U);
    EXPECT_EQ(*item.find("type"), JSON("text"));
    return *item.find("text")->asString();
  }

  FakeHome home_;
};

TEST_F(DispatcherTest, WhatIsNoObjectIsAParseError) {
  for (const char* line : {"x", "{", "[]", R"([{"jsonrpc":"2.0","id":1,"method":"ping"}])", "1", "\"a\"", "null",
                           "true", "{\"id\":1,\"method\":\"ping\",}", "{\"id\":1} {\"id\":2}", "{'id':1}", " ", "\r",
                           R"({"id":"\ud800","method":"ping"})", "\xEF\xBB\xBF{\"id\":1,\"method\":\"ping\"}"}) {
    EXPECT_EQ(answerTo(line), parseError) << line;
  }
  EXPECT_EQ(answerTo(std::string_view("{\"id\":1,\"method\":\"ping\"}\0", 25)), parseError);
  EXPECT_EQ(answerTo(R"({"method":"notification",})"), parseError);
}

TEST_F(DispatcherTest, IdsAreEchoedExactly) {
  for (const char* id : {"7", "\"abc\"", "0", "-0", "1.50", "1E3", "1180591620717411303424", "\"\"", "\"a/b\"", "false",
                         "true", "[]", "{}", R"([1,{"a":null}])", R"("\u0000é€")", "1e-400"}) {
    const std::string line = R"({"jsonrpc":"2.0","id":)" + std::string(id) + R"(,"method":"ping"})";
    EXPECT_EQ(answerTo(line), resultFor(id, "{}")) << id;
    const std::string failing = R"({"id":)" + std::string(id) + R"(,"method":"x"})";
    EXPECT_EQ(answerTo(failing), errorFor(id, -32601, "Method not found: x")) << id;
  }
  EXPECT_EQ(answerTo(R"({"id":1,"method":"ping","id":2})"), resultFor("2", "{}")) << "the later duplicate counts";
}

TEST_F(DispatcherTest, WithoutAnIdNothingRunsAndNothingIsWritten) {
  const auto application = applicationAnswering(R"({"ok":true})");
  for (const char* line :
       {R"({"jsonrpc":"2.0","method":"ping"})", R"({"jsonrpc":"2.0","id":null,"method":"ping"})", "{}",
        R"({"id":null})", R"({"method":"notifications/initialized"})", R"({"method":"no such method"})",
        R"({"id":1,"id":null})", R"({"method":"tools/call","params":{"name":"slate_open"}})",
        R"({"method":"tools/list"})",
        R"({"method":"tools/call","params":{"name":"remember_preference","arguments":{"note":"x"}}})"}) {
    const ServerOutput result = handleOneLine(line);
    EXPECT_EQ(result.output, "") << line;
    EXPECT_EQ(result.diagnostics, "") << line;
  }
  EXPECT_EQ(application.connectionCount(), 0);
}

TEST_F(DispatcherTest, TheVersionMemberIsNotLookedAt) {
  for (const char* member : {"", R"("jsonrpc":"1.0",)", R"("jsonrpc":null,)", R"("jsonrpc":[],)"}) {
    EXPECT_EQ(answerTo("{" + std::string(member) + R"("id":1,"method":"ping"})"), resultFor("1", "{}"));
  }
}

TEST_F(DispatcherTest, MethodsWithFixedAnswers) {
  EXPECT_EQ(answerTo(R"({"id":1,"method":"ping","params":{"x":1}})"), resultFor("1", "{}"));
  EXPECT_EQ(answerTo(R"({"id":1,"method":"prompts/list"})"), resultFor("1", R"({"prompts":[]})"));
  EXPECT_EQ(answerTo(R"({"id":1,"method":"resources/list"})"), resultFor("1", R"({"resources":[]})"));
  EXPECT_EQ(answerTo(R"({"id":1,"method":"resources/templates/list"})"), resultFor("1", R"({"resourceTemplates":[]})"));
}

TEST_F(DispatcherTest, InitializeIgnoresItsParams) {
  const std::string result = R"({"protocolVersion":"2024-11-05","capabilities":{"tools":{"listChanged":true}},
                                 "serverInfo":{"name":"orvane","version":")" +
                             applicationVersion() + "\"}}";
  for (const char* params :
       {"", R"(,"params":{"protocolVersion":"2099-01-01"})", R"(,"params":[])", R"(,"params":5)"}) {
    EXPECT_EQ(answerTo(R"({"id":1,"method":"initialize")" + std::string(params) + "}"), resultFor("1", result));
  }
}

TEST_F(DispatcherTest, UnknownMethodsAreNamedUnchanged) {
  for (const char* name : {"", "Ping", "PING", "ping ", " ping", "tools/List", "notifications/initialized", "a/b",
                           R"(\u0000\n\"\\é)", "resources/read"}) {
    const std::string unescaped = *parsed("\"" + std::string(name) + "\"").asString();
    EXPECT_EQ(answerTo(R"({"id":1,"method":")" + std::string(name) + "\"}"),
              errorFor("1", -32601, "Method not found: " + unescaped));
  }
  for (const char* method :
       {"", R"(,"method":null)", R"(,"method":5)", R"(,"method":["ping"])", R"(,"Method":"ping")"}) {
    EXPECT_EQ(answerTo(R"({"jsonrpc":"2.0","id":3)" + std::string(method) + "}"),
              errorFor("3", -32601, "Method not found: "));
  }
}

TEST_F(DispatcherTest, ToolsListIsTheRegistrys) {
  const std::string list = canonical(answerTo(R"({"id":1,"method":"tools/list","params":{"cursor":"x"}})"));
  EXPECT_EQ(list,
            writePrettyJSON(JSON::Object{
                {"jsonrpc", "2.0"}, {"id", 1}, {"result", JSON::Object{{"tools", fullRegistry().listEntries()}}}}));
  const ToolRegistry none(false, {MCPToolset::computer}, true);
  EXPECT_EQ(canonical(handleOneLine(R"({"id":1,"method":"tools/list"})", none).output),
            resultFor("1", R"({"tools":[]})"));
}

TEST_F(DispatcherTest, AToolNeedsAName) {
  for (const char* params : {"", R"(,"params":{})", R"(,"params":{"name":5})", R"(,"params":{"name":null})",
                             R"(,"params":{"Name":"get_slate"})", R"(,"params":["get_slate"])", R"(,"params":"x")",
                             R"(,"params":null)", R"(,"params":{"name":["get_slate"]})"}) {
    EXPECT_EQ(answerTo(R"({"id":1,"method":"tools/call")" + std::string(params) + "}"),
              errorFor("1", -32602, "Missing 'name' in tools/call"))
        << params;
  }
}

TEST_F(DispatcherTest, UnknownToolsAreNamedUnchanged) {
  for (const char* name : {"", "nothing", "Get_slate", "get_slate ", R"(\u0000\u0007\n/é)"}) {
    const std::string unescaped = *parsed("\"" + std::string(name) + "\"").asString();
    EXPECT_EQ(answerTo(R"({"id":"x","method":"tools/call","params":{"name":")" + std::string(name) + "\"}}"),
              errorFor("\"x\"", -32602, "Unknown tool: " + unescaped));
  }
}

TEST_F(DispatcherTest, ArgumentsThatAreNoObjectAreNone) {
  const auto application = applicationAnswering(R"({"ok":true})");
  std::size_t calls = 0;
  for (const char* arguments : {"", R"(,"arguments":null)", R"(,"arguments":[1,2])", R"(,"arguments":"x")",
                                R"(,"arguments":5)", R"(,"arguments":{})"}) {
    EXPECT_EQ(toolText(R"({"id":1,"method":"tools/call","params":{"name":"speak")" + std::string(arguments) + "}}"),
              "{}");
    ASSERT_EQ(application.requests().size(), ++calls);
    EXPECT_EQ(canonical(application.requests().back()), canonical(R"({"method":"speak","args":{}})")) << arguments;
  }
}

TEST_F(DispatcherTest, ArgumentsReachTheApplicationAndTheResultComesBackSortedWithPlainSlashes) {
  const auto application =
      applicationAnswering(R"({"ok":true,"result":{"z":"a\/b","a":[1.50,{"d":null,"c":1180591620717411303424}]}})");
  const std::string text = toolText(
      R"({"id":1,"method":"tools/call","params":{"name":"speak","arguments":{"text":"x/y","n":1.50,"_agent":"forged"}}})");
  EXPECT_EQ(text, canonical(R"({"a":[1.50,{"c":1180591620717411303424,"d":null}],"z":"a/b"})"));
  EXPECT_LT(text.find("\"a\""), text.find("\"z\""));
  EXPECT_NE(text.find("a/b"), std::string::npos);
  EXPECT_NE(text.find('\n'), std::string::npos);
  EXPECT_EQ(canonical(application.requests().at(0)), canonical(R"({"method":"speak","args":{"text":"x/y","n":1.50}})"));
}

TEST_F(DispatcherTest, ResultsThatSpeakOfErrorsAreResults) {
  const auto application = applicationAnswering(R"({"ok":true,"result":{"error":"refused","isError":true}})");
  EXPECT_EQ(toolText(R"({"id":1,"method":"tools/call","params":{"name":"speak"}})"),
            canonical(R"({"error":"refused","isError":true})"));
}

TEST_F(DispatcherTest, AnArrayIsAResultAndABareScalarIsNot) {
  const std::string call = R"({"id":9,"method":"tools/call","params":{"name":"get_slate"}})";
  {
    const auto application = applicationAnswering(R"({"ok":true,"result":[]})");
    EXPECT_EQ(toolText(call), "[]");
  }
  for (const char* result : {"5", "null", "true", "\"text\"", "1.5"}) {
    const auto application = applicationAnswering(R"({"ok":true,"result":)" + std::string(result) + "}");
    const JSON::Object message = parsedObject(answerTo(call));
    ASSERT_NE(message.find("error"), nullptr) << result;
    EXPECT_EQ(message.find("result"), nullptr);
    EXPECT_EQ(*message.find("id"), JSON(9));
    const JSON::Object& error = *message.find("error")->asObject();
    EXPECT_EQ(error.size(), 2U);
    EXPECT_EQ(*error.find("code"), JSON(-32603));
    EXPECT_TRUE(error.find("message")->asString()->starts_with("Internal error: "));
    EXPECT_GT(error.find("message")->asString()->size(), std::string("Internal error: ").size());
  }
}

TEST_F(DispatcherTest, TheBridgesErrorsKeepCodeMessageAndData) {
  const std::string call = R"({"id":1,"method":"tools/call","params":{"name":"get_slate"}})";
  EXPECT_EQ(answerTo(call), errorFor("1", -32001, "Orvane app is not running — open the app and try again."));
  const auto application =
      applicationAnswering(R"({"error":{"code":"consent_denied","message":"a/b\n","data":{"x":1.50}}})");
  EXPECT_EQ(answerTo(call), canonical(R"({"jsonrpc":"2.0","id":1,"error":{"code":-32012,"message":"a/b\n",
                                          "data":{"x":1.50,"code":"consent_denied"}}})"));
}

TEST_F(DispatcherTest, ARequestThatCannotBeEncodedIsAnInternalError) {
  const auto application = applicationAnswering(R"({"ok":true})");
  setStartupValues({"\xFF", false});
  const JSON::Object message = parsedObject(answerTo(R"({"id":1,"method":"tools/call","params":{"name":"speak"}})"));
  const JSON::Object& error = *message.find("error")->asObject();
  EXPECT_EQ(*error.find("code"), JSON(-32603));
  EXPECT_TRUE(error.find("message")->asString()->starts_with("Internal error: "));
  EXPECT_EQ(error.find("data"), nullptr);
}

TEST_F(DispatcherTest, AListThatCannotBeSerialisedIsReportedAndStaysUnanswered) {
  fakePlatform().applicationSupport = "\xFF";
  const ServerOutput result = handleOneLine(R"({"id":1,"method":"tools/list"})");
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(result.diagnostics, "orvane-mcp: failed to serialize response\n");
}

TEST_F(DispatcherTest, AfterAnUnserialisableListTheServerGoesOn) {
  fakePlatform().applicationSupport = "\xFF";
  const ServerOutput result = runServer("{\"id\":1,\"method\":\"tools/list\"}\n{\"id\":2,\"method\":\"ping\"}\n");
  EXPECT_EQ(canonical(result.output), resultFor("2", "{}"));
  EXPECT_EQ(result.diagnostics, "orvane-mcp: failed to serialize response\n");
}

TEST_F(DispatcherTest, ALineThatIsNotUTF8IsDroppedWithADiagnostic) {
  for (const char* line : {"\xFF", "{\"id\":1,\"method\":\"\xC3\"}", "{\"id\":\"\xED\xA0\x80\",\"method\":\"ping\"}"}) {
    const ServerOutput result = handleOneLine(line);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.diagnostics, "orvane-mcp: dropping non-UTF-8 line\n");
  }
}

/// A ping whose params hold `inner` below `containers` arrays.
std::string nestedPing(std::size_t containers, std::string_view inner) {
  return R"({"id":1,"method":"ping","params":)" + nestedArrays(containers, inner) + "}";
}

TEST_F(DispatcherTest, ThirtyLevelsBelowTheMessageAreTheLimit) {
  EXPECT_EQ(answerTo(nestedPing(30, "1")), resultFor("1", "{}"));
  EXPECT_EQ(answerTo(nestedPing(31, "1")), depthError);
  EXPECT_EQ(answerTo(nestedPing(40, "1")), depthError);
  // An empty container adds no level.
  EXPECT_EQ(answerTo(nestedPing(31, "")), resultFor("1", "{}"));
  EXPECT_EQ(answerTo(nestedPing(32, "")), depthError);
  EXPECT_EQ(answerTo(nestedPing(30, "{}")), resultFor("1", "{}"));
  EXPECT_EQ(answerTo(nestedPing(31, "{}")), depthError);
  EXPECT_EQ(answerTo(nestedPing(30, "{\"a\":1}")), depthError);
  EXPECT_EQ(answerTo(nestedPing(29, "{\"a\":1}")), resultFor("1", "{}"));
}

TEST_F(DispatcherTest, DepthCountsInEveryMember) {
  const std::string deep = nestedArrays(31, "1");
  EXPECT_EQ(answerTo(R"({"method":"ping","id":)" + deep + "}"), depthError);
  EXPECT_EQ(answerTo(R"({"method":"ping","id":1,"unknown":)" + deep + "}"), depthError);
  EXPECT_EQ(answerTo(R"({"method":"notification","unknown":)" + deep + "}"), depthError) << "even a notification";
  EXPECT_EQ(answerTo(R"({"id":1,"method":"ping","wide":[1,[],{},)" + deep + ",1]}"), depthError);
  EXPECT_EQ(answerTo(R"({"id":)" + nestedArrays(30, "1") + R"(,"method":"ping"})"),
            resultFor(nestedArrays(30, "1"), "{}"));
}

TEST_F(DispatcherTest, ExtremeDepthIsAnsweredToo) {
  for (const std::size_t levels : {std::size_t{511}, std::size_t{512}, std::size_t{513}, std::size_t{500000}}) {
    EXPECT_EQ(answerTo(nestedPing(levels, "")), depthError) << levels;
    EXPECT_EQ(answerTo("  " + nestedPing(levels, "")), depthError) << levels;
    EXPECT_EQ(answerTo(nestedArrays(levels)), parseError) << levels;
  }
}

TEST_F(DispatcherTest, WhatIsNoJSONIsAParseErrorAtAnyDepth) {
  EXPECT_EQ(answerTo(std::string(1048576, '[')), parseError);
  for (const std::size_t levels : {std::size_t{100}, std::size_t{511}, std::size_t{512}, std::size_t{500000}}) {
    const std::string opened = "{\"a\":" + std::string(levels, '[');
    EXPECT_EQ(answerTo(opened), parseError) << levels;
    EXPECT_EQ(answerTo(opened + "x"), parseError) << levels;
    EXPECT_EQ(answerTo(opened + std::string(levels, ']')), parseError) << levels;
    EXPECT_EQ(answerTo(nestedPing(levels, "") + "}"), parseError) << levels;
  }
}

}  // namespace
}  // namespace orvane::test
