// Messages and methods: what is answered, with which id, and that the program recovers after each broken line.
#include "tests/support/server_test.h"

namespace orvane::test {
namespace {

class DispatchTest : public ServerTest {
 protected:
  void SetUp() override { server = start(); }
  void TearDown() override {
    expectPong(*server);
    expectCleanEnd(*server);
    server.reset();
  }

  std::string rawAnswer(const std::string& line) {
    server->send(line + "\n");
    return server->readLine().value_or("null");
  }

  void expectResult(const std::string& line, const std::string& result) {
    EXPECT_EQ(server->request(line), parseJson(R"({"jsonrpc":"2.0","id":1,"result":)" + result + "}")) << line;
  }

  void expectParseError(const std::string& line) {
    expectError(server->request(line), nullptr, -32700, "Parse error");
    expectPong(*server);
  }

  void expectTooDeep(const std::string& line) {
    expectError(server->request(line), nullptr, -32600, "Request exceeds max depth");
    expectPong(*server);
  }

  std::unique_ptr<ServerProcess> server;
};

std::string repeated(const std::string& unit, int count) {
  std::string text;
  for (int index = 0; index < count; ++index) {
    text += unit;
  }
  return text;
}

std::string nested(int containers, const std::string& inner) {
  return repeated("[", containers) + inner + repeated("]", containers);
}

std::string nestedObjects(int containers, const std::string& inner) {
  return repeated("{\"k\":", containers) + inner + repeated("}", containers);
}

TEST_F(DispatchTest, EveryMethodAnswers) {
  expectResult(R"({"jsonrpc":"2.0","id":1,"method":"initialize","params":{"protocolVersion":"1999-01-01"}})",
               R"({"protocolVersion":"2024-11-05","capabilities":{"tools":{"listChanged":true}},)"
               R"("serverInfo":{"name":"orvane","version":"0.0.0-dev"}})");
  expectResult(R"({"id":1,"method":"ping"})", "{}");
  expectResult(R"({"id":1,"method":"prompts/list"})", R"({"prompts":[]})");
  expectResult(R"({"id":1,"method":"resources/list"})", R"({"resources":[]})");
  expectResult(R"({"id":1,"method":"resources/templates/list"})", R"({"resourceTemplates":[]})");
  expectResult(R"({"jsonrpc":5,"id":1,"method":"ping","params":[1,2]})", "{}");
}

TEST_F(DispatchTest, UnknownMethods) {
  for (const char* method : {"", "Ping", "ping ", "tools", "tools/list/", "notifications/initialized", "prompts/get",
                             "a\\u0000b", "\\u001b[31m\\n\\t", "\u00e9\U0001f399", "a/b", "\\\"\\\\"}) {
    const std::string line = std::string(R"({"id":1,"method":")") + method + "\"}";
    const std::string name(parseJson(line).at("method").as_string());
    expectError(server->request(line), 1, -32601, "Method not found: " + name);
  }
  for (const char* line :
       {R"({"jsonrpc":"2.0","id":1})", R"({"id":1,"method":null})", R"({"id":1,"method":["ping"]})"}) {
    expectError(server->request(line), 1, -32601, "Method not found: ");
  }
}

TEST_F(DispatchTest, IdsComeBackExactly) {
  for (const std::string id :
       {"0", "-0", "\"\"", "false", "true", "[]", "{}", "1.50", "1180591620717411303424", "-7", "1e400", "1E+2", "0.10",
        "[1.0,{\"a\":null}]", "{\"z\":1,\"a\":2}", "\"abc\"", "12345678901234567890.123456789"}) {
    const std::string answer = rawAnswer("{\"id\":" + id + ",\"method\":\"ping\"}");
    EXPECT_NE(answer.find("\"id\":" + id), std::string::npos) << answer;
    const std::string refusal = rawAnswer("{\"id\":" + id + ",\"method\":\"x\"}");
    EXPECT_NE(refusal.find("\"id\":" + id), std::string::npos) << refusal;
    EXPECT_EQ(refusal.find("\"data\""), std::string::npos) << refusal;
  }
  const std::string answer = rawAnswer(R"({"id":"\u0000\u001f\ud83d\ude00\"","method":"ping"})");
  EXPECT_EQ(parseJson(answer).at("id"), parseJson(R"("\u0000\u001f\ud83d\ude00\"")"));
}

TEST_F(DispatchTest, NotificationsAreNeverAnswered) {
  for (const char* line :
       {R"({"jsonrpc":"2.0","method":"ping"})", R"({"jsonrpc":"2.0","id":null,"method":"ping"})", R"({})",
        R"({"method":"notifications/initialized"})", R"({"method":"nonsense"})", R"({"ID":1,"method":"ping"})",
        R"({"method":"tools/call","params":{"name":"remember_preference","arguments":{"line":"x","text":"x"}}})",
        R"({"method":"tools/call","params":{"name":5}})", R"({"id":1,"id":null,"method":"ping"})"}) {
    server->send(std::string(line) + "\n");
    expectPong(*server);
  }
  EXPECT_NE(access((home_.path() + "/.config/orvane/preferences.md").c_str(), F_OK), 0);
}

TEST_F(DispatchTest, TheLaterOfTwoKeysCounts) {
  expectResult(R"({"id":7,"method":"x","id":1,"method":"ping"})", "{}");
  expectResult(R"({"id":null,"method":"ping","id":1})", "{}");
  expectResult(R"({"\u0069d":1,"method":"x","\u006dethod":"ping"})", "{}");
}

TEST_F(DispatchTest, WhatIsNoObjectIsAParseError) {
  for (const char* line : {R"([{"jsonrpc":"2.0","id":1,"method":"ping"}])",
                           "[]",
                           "null",
                           "5",
                           "\"x\"",
                           "true",
                           "{",
                           "}",
                           "x",
                           "{\"id\":1,}",
                           "{'id':1}",
                           "{\"id\":01,\"method\":\"ping\"}",
                           "{\"id\":NaN}",
                           "{\"id\":+1}",
                           "{\"id\":.5}",
                           "{\"id\":1.}",
                           "{\"id\":1} {\"id\":2}",
                           "{\"id\":1}x",
                           "{\"id\":1}//c",
                           "/**/{\"id\":1}",
                           "{id:1}",
                           "{\"id\":\"a\tb\"}",
                           "{\"id\":\"\\x41\"}",
                           "{\"id\":\"\\u12\"}",
                           "{\"id\":Infinity}",
                           "{\"id\":1 \"method\":2}",
                           "{\"id\":1e}",
                           "{\"id\":-}",
                           "{\"id\":tru}",
                           "\f{\"id\":1}",
                           "\u00a0{\"id\":1}",
                           "{\"id\" 1}",
                           "{\"id\":\"\\ud800\"}"}) {
    SCOPED_TRACE(line);
    expectParseError(line);
  }
}

TEST_F(DispatchTest, CallsWithoutAUsableName) {
  const std::string message = "Missing 'name' in tools/call";
  for (const char* params : {R"({"name":5})", R"({})", R"({"name":null})", R"({"name":["ping"]})", R"([])", R"("x")",
                             "null", R"({"Name":"orvane_version"})"}) {
    expectError(server->request(std::string(R"({"id":1,"method":"tools/call","params":)") + params + "}"), 1, -32602,
                message);
  }
  expectError(server->request(R"({"id":1,"method":"tools/call"})"), 1, -32602, message);
}

TEST_F(DispatchTest, UnknownTools) {
  for (const char* name : {"", "Orvane_version", "orvane_version ", "a\\u0000b", "\\u0007\\u007f", "\u00e9", "x/y"}) {
    const std::string line = std::string(R"({"id":1,"method":"tools/call","params":{"name":")") + name + "\"}}";
    const std::string plain(parseJson(line).at("params").at("name").as_string());
    expectError(server->request(line), 1, -32602, "Unknown tool: " + plain);
  }
}

TEST_F(DispatchTest, ArgumentsThatAreNoObjectCountAsNone) {
  for (const char* arguments : {"[1,2]", "null", "\"x\"", "5", "{}"}) {
    const Json result = toolResult(server->request(toolCall("orvane_version", arguments)));
    EXPECT_EQ(result, parseJson(R"({"version":"0.0.0-dev"})")) << arguments;
  }
}

TEST_F(DispatchTest, DepthCountsOverTheWholeMessage) {
  const std::string head = R"({"id":1,"method":"ping",)";
  for (const char* member : {"params", "unknown", "jsonrpc"}) {
    const std::string start = head + "\"" + member + "\":";
    expectResult(start + nested(30, "1") + "}", "{}");
    expectTooDeep(start + nested(31, "1") + "}");
    expectResult(start + nestedObjects(30, "null") + "}", "{}");
    expectTooDeep(start + nestedObjects(31, "null") + "}");
    // An empty container adds no level of its own.
    expectResult(start + nested(31, "") + "}", "{}");
    expectTooDeep(start + nested(32, "") + "}");
    expectResult(start + nested(30, "{}") + "}", "{}");
    expectTooDeep(start + nested(31, "{}") + "}");
    expectTooDeep(start + nested(40, "1") + "}");
  }
  EXPECT_EQ(server->request("{\"method\":\"ping\",\"id\":" + nested(30, "1") + "}").at("id"),
            parseJson(nested(30, "1")));
  expectTooDeep("{\"method\":\"ping\",\"id\":" + nested(31, "1") + "}");
  expectTooDeep("{\"method\":\"notifications/x\",\"params\":" + nested(31, "1") + "}");
  expectTooDeep("{\"a\":" + nested(300, "1") + "}");
}

TEST_F(DispatchTest, DeepInputNeverEndsTheProgram) {
  expectParseError(std::string(1048576, '['));
  expectParseError(nested(524288, ""));
  expectParseError(nested(2000, ""));
  expectTooDeep("{\"id\":1,\"method\":\"ping\",\"params\":" + nested(500000, "") + "}");
  expectTooDeep(nestedObjects(150000, "1"));
}

}  // namespace
}  // namespace orvane::test
