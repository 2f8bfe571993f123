// Forwarded calls: what reaches the application, and what its answers become.
#include <algorithm>

#include "tests/support/decided_tools.h"
#include "tests/support/file_content.h"
#include "tests/support/scripted_application.h"
#include "tests/support/server_test.h"

namespace orvane::test {
namespace {

class BridgeTest : public ServerTest {
 protected:
  // The answer of a forwarded call when the application behaves like this.
  Json callWith(ScriptedApplication::Script script) {
    const ScriptedApplication application(home_.socketPath(), std::move(script));
    auto server = start();
    Json response = server->request(toolCall("set_input_device", R"({"name":"USB Mic"})"));
    expectPong(*server);
    expectCleanEnd(*server);
    EXPECT_EQ(application.connectionCount(), 1);
    return response;
  }

  Json callAnswered(const std::string& answer) { return callWith(answerWith(answer)); }

  // The raw request that a call with these arguments sends.
  std::string requestFor(const std::string& arguments, std::vector<std::string> options = {},
                         std::vector<std::string> environment = {}) {
    const ScriptedApplication application(home_.socketPath(), answerWith("{\"ok\":true}\n"));
    auto server = start(std::move(options), std::move(environment));
    EXPECT_EQ(toolResult(server->request(toolCall("set_input_device", arguments))), parseJson("{}"));
    expectCleanEnd(*server);
    const std::vector<std::string> requests = application.requests();
    EXPECT_EQ(requests.size(), 1U);
    return requests.empty() ? "" : requests.front();
  }

  void expectRequest(const std::string& raw, const std::string& arguments) {
    ASSERT_FALSE(raw.empty());
    EXPECT_EQ(raw.back(), '\n');
    EXPECT_EQ(raw.find('\n'), raw.size() - 1) << raw;
    EXPECT_EQ(parseJson(raw), parseJson(R"({"method":"set_input_device","args":)" + arguments + "}")) << raw;
  }
};

TEST_F(BridgeTest, TheRequestCarriesTheArgumentsUntouched) {
  const std::string arguments =
      R"({"name":"a/b","":null,"unknown":[1,{"":{}}],"big":1180591620717411303424,"exact":1.50,"far":1e400,"nul":"\u0000",)"
      "\"text\":\"\u00e9\U0001f399\"}";
  const std::string raw = requestFor(arguments);
  expectRequest(raw, arguments);
  for (const char* piece : {"\"a/b\"", ":1180591620717411303424", ":1.50", ":1e400", "\\u0000", "\u00e9\U0001f399"}) {
    EXPECT_NE(raw.find(piece), std::string::npos) << piece << " in " << raw;
  }
  expectRequest(requestFor("{}"), "{}");
  expectRequest(requestFor("[1]"), "{}");
}

TEST_F(BridgeTest, OriginKeysCannotBeForged) {
  const std::string forged =
      R"({"_agent":"a","_agent":1,"\u005fagent":{},"_\u0061gent":null,"_origin":"assistant","_origin":[],)"
      R"("\u005forigin":true,"keep":{"_agent":"deep","_origin":"deep"},"_Agent":1,"_agent ":2})";
  const std::string kept = R"("keep":{"_agent":"deep","_origin":"deep"},"_Agent":1,"_agent ":2)";
  const std::vector<std::string> assistant{"ORVANE_ASSISTANT_ORIGIN=1"};
  const std::string raw = requestFor(forged);
  expectRequest(raw, "{" + kept + "}");
  EXPECT_EQ(raw.find("_agent\""), raw.rfind("_agent\"")) << raw;
  expectRequest(requestFor(forged, {"--agent", "cli"}), R"({"_agent":"cli",)" + kept + "}");
  expectRequest(requestFor(forged, {}, assistant), R"({"_origin":"assistant",)" + kept + "}");
  const std::string both = requestFor(forged, {"--agent", "cli"}, assistant);
  expectRequest(both, R"({"_agent":"cli","_origin":"assistant",)" + kept + "}");
  EXPECT_EQ(both.find("\"_origin\":\"assistant\""), both.rfind("\"_origin\":\"assistant\"")) << both;
}

TEST_F(BridgeTest, LongTextsAreSpokenUncut) {
  const ScriptedApplication application(home_.socketPath(), answerWith("{\"ok\":true}\n"));
  auto server = start();
  for (const std::size_t length : {3000U, 20001U}) {
    const std::string arguments = R"({"text":")" + std::string(length - 1, 't') + "!\"}";
    EXPECT_EQ(toolResult(server->request(toolCall("speak", arguments))), parseJson("{}"));
    const std::vector<std::string> requests = application.requests();
    ASSERT_FALSE(requests.empty());
    EXPECT_TRUE(parseJson(requests.back()) == parseJson(R"({"method":"speak","args":)" + arguments + "}"))
        << requests.back().size();
  }
  expectCleanEnd(*server);
}

TEST_F(BridgeTest, LocalToolsNeverConnectAndForwardedOnesAlwaysDo) {
  const ScriptedApplication application(home_.socketPath(), answerWith("{\"ok\":true}\n"));
  auto server = start();
  int connections = 0;
  for (const DecidedTool& tool : decidedTools()) {
    toolResult(server->request(toolCall(tool.name)));
    connections += tool.marks.contains("local") ? 0 : 1;
    EXPECT_EQ(application.connectionCount(), connections) << tool.name;
  }
  expectCleanEnd(*server);
  // None but the two tools that deal with preferences is recorded.
  const std::string log = readFile(home_.path() + "/.config/orvane/mcp-context-reads.jsonl");
  EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 2);
}

TEST_F(BridgeTest, TheAgentNameIsTakenAsItStands) {
  expectRequest(requestFor("{}", {"--agent", ""}), R"({"_agent":""})");
  expectRequest(requestFor("{}", {"--agent", "--read"}), R"({"_agent":"--read"})");
  expectRequest(requestFor("{}", {"--agent", "one", "--agent", "two"}), R"({"_agent":"one"})");
  expectRequest(requestFor("{}", {"--agent", " \u00e9/\" "}), "{\"_agent\":\" \u00e9/\\\" \"}");
  expectRequest(requestFor("{}", {"--agent"}), "{}");
}

TEST_F(BridgeTest, AnAgentNameThatIsNotUTF8CannotBeSent) {
  const ScriptedApplication application(home_.socketPath(), answerWith("{\"ok\":true}\n"));
  auto server = start(std::vector<std::string>{"--agent", "a\xff"});
  const Json response = server->request(toolCall("get_insights"));
  const auto& error = response.at("error").as_object();
  EXPECT_EQ(error.at("code"), Json(-32603));
  EXPECT_EQ(std::string(error.at("message").as_string()).rfind("Internal error: ", 0), 0U);
  EXPECT_FALSE(error.contains("data"));
  toolResult(server->request(toolCall("current_settings")));
  expectCleanEnd(*server);
  for (const std::string& request : application.requests()) {
    EXPECT_EQ(request, "");
  }
}

TEST_F(BridgeTest, ResultsArePassedOn) {
  EXPECT_EQ(toolResult(callAnswered(R"({"ok":true,"result":{"b":[1,null],"a":"x/y"}})")),
            parseJson(R"({"a":"x/y","b":[1,null]})"));
  EXPECT_EQ(toolResult(callAnswered(R"({"ok":true,"result":[1,2],"error":{"code":"x"}})"
                                    "\n")),
            parseJson("[1,2]"));
  EXPECT_EQ(toolResult(callAnswered(R"({"ok":true})"
                                    "\n\n")),
            parseJson("{}"));
  const Json exact = callAnswered(R"({"ok":true,"result":{"z":1.50,"a":1180591620717411303424,"u":"a\/b"}})");
  const std::string text(exact.at("result").at("content").at(0).at("text").as_string());
  for (const char* piece : {"1.50", "1180591620717411303424", "a/b"}) {
    EXPECT_NE(text.find(piece), std::string::npos) << text;
  }
  EXPECT_LT(text.find("\"a\""), text.find("\"u\""));
  EXPECT_LT(text.find("\"u\""), text.find("\"z\""));
  EXPECT_NE(text.find('\n'), std::string::npos) << text;
}

TEST_F(BridgeTest, AScalarIsNoReturnValue) {
  for (const char* scalar : {"null", "5", "true", "\"x\""}) {
    const Json response = callAnswered(std::string(R"({"ok":true,"result":)") + scalar + "}");
    const auto& error = response.at("error").as_object();
    EXPECT_EQ(error.at("code"), Json(-32603)) << scalar;
    EXPECT_EQ(std::string(error.at("message").as_string()).rfind("Internal error: ", 0), 0U) << scalar;
    EXPECT_FALSE(error.contains("data"));
  }
}

TEST_F(BridgeTest, MalformedResponses) {
  const std::string noObject = "Malformed response from Orvane: response was not a JSON object";
  for (const char* answer : {"", "\n", "[]", "5", "null", "{", R"({"ok":true,"result":)", R"({"ok":true}{})", "\xff",
                             "{\"ok\":true,\"result\":\"\xed\xa0\x80\"}"}) {
    expectError(callAnswered(answer), 1, -32002, noObject);
  }
  std::string deep(5000, '[');
  expectError(callAnswered(R"({"ok":true,"result":)" + deep + std::string(5000, ']') + "}"), 1, -32002, noObject);
  for (const char* answer : {"{}", R"({"ok":false})", R"({"ok":"true","result":{}})", R"({"ok":1,"result":{}})",
                             R"({"ok":null})", R"({"ok":false,"error":"x"})", R"({"ok":false,"error":null})",
                             R"({"ok":false,"error":[]})", R"({"OK":true})"}) {
    expectError(callAnswered(answer), 1, -32002,
                "Malformed response from Orvane: error response missing 'error' object");
  }
}

TEST_F(BridgeTest, ErrorCodesAreMapped) {
  const std::vector<std::pair<std::string, int>> codes = {
      {"validation_failed", -32602},       {"slot_budget_full", -32011},  {"consent_denied", -32012},
      {"consent_pending_timeout", -32013}, {"too_many_requests", -32014}, {"peer_not_permitted", -32015},
      {"app_not_running", -32001},         {"internal_error", -32603}};
  for (const auto& [code, number] : codes) {
    expectError(callAnswered(R"({"ok":false,"error":{"code":")" + code + R"(","message":"why/\u0000"}})"), 1, number,
                std::string("why/\0", 5), R"({"code":")" + code + "\"}");
  }
  for (const char* code : {"\"\"", "\"Consent_denied\"", "\"consentDenied\"", "\"new\"", "5", "null", "{}"}) {
    expectError(callAnswered(std::string(R"({"error":{"message":"m","code":)") + code + "}}"), 1, -32603, "m",
                R"({"code":"internal_error"})");
  }
  expectError(callAnswered(R"({"ok":false,"error":{}})"), 1, -32603, "Unknown error", R"({"code":"internal_error"})");
  expectError(callAnswered(R"({"error":{"message":5,"code":"consent_denied"}})"), 1, -32012, "Unknown error",
              R"({"code":"consent_denied"})");
}

TEST_F(BridgeTest, DataIsMergedWithTheCode) {
  const std::string head = R"({"ok":false,"error":{"code":"slot_budget_full","message":"full","data":)";
  expectError(callAnswered(head + R"({"loadout":["a"],"code":"forged","n":null}}})"), 1, -32011, "full",
              R"({"loadout":["a"],"code":"slot_budget_full","n":null})");
  for (const char* data : {"[1]", "\"x\"", "null", "5", "{}"}) {
    expectError(callAnswered(head + data + "}}"), 1, -32011, "full", R"({"code":"slot_budget_full"})");
  }
}

}  // namespace
}  // namespace orvane::test
