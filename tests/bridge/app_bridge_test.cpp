// What the bridge sends, what it makes of an answer, and what an agent sees of the application's errors.
#include "bridge/app_bridge.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "core/json_writer.h"
#include "core/rpc_error.h"
#include "core/startup_values.h"
#include "tests/support/bridge_call.h"
#include "tests/support/fake_platform.h"
#include "tests/support/json_text.h"

namespace orvane::test {
namespace {

class AppBridgeTest : public testing::Test {
 protected:
  void SetUp() override { setStartupValues({}); }
  void TearDown() override { setStartupValues({}); }

  /// The "args" that reach the application for these arguments, in one form.
  static std::string sentArgs(std::string_view args) {
    const auto application = applicationAnswering(R"({"ok":true})");
    AppBridge::call("m", parsedObject(args));
    EXPECT_EQ(application.requests().size(), 1U);
    const JSON::Object request = parsedObject(application.requests().at(0));
    EXPECT_EQ(request.size(), 2U);
    EXPECT_EQ(*request.find("method"), JSON("m"));
    return writePrettyJSON(*request.find("args"));
  }

  /// What the agent sees when the application answers `response`.
  static std::string seen(const std::string& response) {
    const auto application = applicationAnswering(response);
    const std::string outcome = outcomeOfCall();
    EXPECT_EQ(application.connectionCount(), 1);
    return outcome;
  }

  FakeHome home_;
};

TEST_F(AppBridgeTest, SendsOneRequestAndReturnsTheResult) {
  const auto application = applicationAnswering("{\"ok\":true,\"result\":{\"b\":1.50,\"a\":[null,\"x/y\"]}}\n");
  EXPECT_EQ(writeCompactJSON(AppBridge::call("set_input_device", {{"name", "USB/Mic"}})),
            R"({"b":1.50,"a":[null,"x/y"]})");
  ASSERT_EQ(application.requests().size(), 1U);
  const std::string request = application.requests()[0];
  EXPECT_EQ(request.find('\n'), request.size() - 1);
  EXPECT_EQ(request.find("\\/"), std::string::npos);
  EXPECT_EQ(canonical(request), canonical(R"({"method":"set_input_device","args":{"name":"USB/Mic"}})"));
  EXPECT_EQ(application.connectionCount(), 1);
}

TEST_F(AppBridgeTest, EveryCallHasItsOwnConnection) {
  const auto application = applicationAnswering(R"({"ok":true,"result":[]})");
  for (int i = 0; i < 20; ++i) EXPECT_EQ(AppBridge::call("m", {}), JSON(JSON::Array()));
  EXPECT_EQ(application.connectionCount(), 20);
  EXPECT_EQ(application.requests().size(), 20U);
}

TEST_F(AppBridgeTest, ArgumentsPassUntouched) {
  const std::string args =
      R"({"":null,"n":1.50,"big":1180591620717411303424,"e":1E400,"unknown":[{},[]],"z":"\u0000 \n é €","a":false})";
  EXPECT_EQ(sentArgs(args), canonical(args));
}

TEST_F(AppBridgeTest, ReservedKeysAreRemovedWhereTheServerHasNothingToSay) {
  EXPECT_EQ(sentArgs(R"({"_agent":"forged","_origin":"assistant","a":1})"), canonical(R"({"a":1})"));
  for (const char* value : {"null", "5", "[]", "{}", "\"\"", "true"}) {
    const std::string text(value);
    EXPECT_EQ(sentArgs(R"({"_agent":)" + text + R"(,"_origin":)" + text + "}"), "{}");
  }
  EXPECT_EQ(sentArgs(R"({"_agent":1,"_agent":2,"\u005fagent":3,"_\u006Frigin":4,"_origin":5})"), "{}");
}

TEST_F(AppBridgeTest, ReservedKeysAreSetFromTheStart) {
  setStartupValues({"my agent", true});
  EXPECT_EQ(sentArgs(R"({"a":1})"), canonical(R"({"a":1,"_agent":"my agent","_origin":"assistant"})"));
  EXPECT_EQ(sentArgs(R"({"_origin":"user","_agent":{"x":1},"\u005fagent":[]})"),
            canonical(R"({"_agent":"my agent","_origin":"assistant"})"));
  setStartupValues({"x", false});
  EXPECT_EQ(sentArgs(R"({"_origin":"assistant"})"), canonical(R"({"_agent":"x"})"));
  setStartupValues({std::nullopt, true});
  EXPECT_EQ(sentArgs(R"({"_agent":"forged"})"), canonical(R"({"_origin":"assistant"})"));
}

TEST_F(AppBridgeTest, AnEmptyAgentNameIsAName) {
  setStartupValues({"", false});
  EXPECT_EQ(sentArgs(R"({"_agent":"forged"})"), canonical(R"({"_agent":""})"));
}

TEST_F(AppBridgeTest, OtherSpellingsAndDeeperKeysStay) {
  setStartupValues({"x", true});
  EXPECT_EQ(sentArgs(R"({"_Agent":1,"agent":2,"_agent ":3,"_origin\u0000":4,"deep":{"_agent":5,"_origin":[6]}})"),
            canonical(R"({"_Agent":1,"agent":2,"_agent ":3,"_origin\u0000":4,"deep":{"_agent":5,"_origin":[6]},
                          "_agent":"x","_origin":"assistant"})"));
}

TEST_F(AppBridgeTest, TheCallersArgumentsStayAsTheyWere) {
  const auto application = applicationAnswering(R"({"ok":true})");
  setStartupValues({"x", true});
  const JSON::Object args = parsedObject(R"({"_agent":"mine","a":1})");
  AppBridge::call("m", args);
  EXPECT_EQ(args, parsedObject(R"({"_agent":"mine","a":1})"));
}

TEST_F(AppBridgeTest, ANameThatIsNotUTF8IsTheWritersErrorAndNothingIsSent) {
  const auto application = applicationAnswering(R"({"ok":true})");
  setStartupValues({"\xFF", false});
  EXPECT_THROW(AppBridge::call("m", {}), JSONWriteError);
  setStartupValues({});
  EXPECT_EQ(AppBridge::call("second", {}), JSON(JSON::Object()));
  ASSERT_EQ(application.requests().size(), 2U);
  EXPECT_EQ(application.requests()[0], "");
}

TEST_F(AppBridgeTest, ResultsOfAnyKindAreReturned) {
  EXPECT_EQ(seen(R"({"ok":true})"), "{}");
  for (const char* result : {"null", "5", "\"text\"", "true", "[]", R"({"error":"refused","code":1})"}) {
    EXPECT_EQ(seen(R"({"ok":true,"result":)" + std::string(result) + "}"), result);
  }
  EXPECT_EQ(seen(R"({"ok":true,"error":{"code":"consent_denied","message":"no"}})"), "{}");
}

TEST_F(AppBridgeTest, EveryCodeOfTheApplicationHasItsNumber) {
  const std::vector<std::pair<std::string, std::string>> numbers = {
      {"validation_failed", "-32602"}, {"slot_budget_full", "-32011"},  {"consent_denied", "-32012"},
      {"app_not_running", "-32001"},   {"too_many_requests", "-32014"}, {"consent_pending_timeout", "-32013"},
      {"internal_error", "-32603"},    {"peer_not_permitted", "-32015"}};
  for (const auto& [code, number] : numbers) {
    EXPECT_EQ(seen(R"({"ok":false,"error":{"code":")" + code + R"(","message":"why not"}})"),
              number + " why not {\"code\":\"" + code + "\"}");
  }
}

TEST_F(AppBridgeTest, UnknownCodesAreInternalErrors) {
  for (const char* code : {"\"new_code\"", "\"Consent_Denied\"", "\"\"", "5", "null"}) {
    EXPECT_EQ(seen(R"({"error":{"code":)" + std::string(code) + R"(,"message":"m"}})"),
              R"(-32603 m {"code":"internal_error"})");
  }
  EXPECT_EQ(seen(R"({"ok":false,"error":{}})"), R"(-32603 Unknown error {"code":"internal_error"})");
}

TEST_F(AppBridgeTest, AnObjectOfDataIsPassedOnWithTheCode) {
  const auto dataFor = [](const std::string& data) {
    const std::string outcome =
        seen(R"({"ok":false,"error":{"code":"slot_budget_full","message":"m","data":)" + data + "}}");
    EXPECT_TRUE(outcome.starts_with("-32011 m {")) << outcome;
    return outcome.substr(9);
  };
  EXPECT_EQ(canonical(dataFor(R"({"field":"x/y","n":1.50})")),
            canonical(R"({"field":"x/y","n":1.50,"code":"slot_budget_full"})"));
  EXPECT_EQ(canonical(dataFor(R"({"code":"mine","deep":{"code":7}})")),
            canonical(R"({"code":"slot_budget_full","deep":{"code":7}})"));
  EXPECT_EQ(canonical(dataFor(R"({"code":1,"\u0063ode":2})")), canonical(R"({"code":"slot_budget_full"})"));
  for (const char* dropped : {"{}", "null", "[1,2]", "\"text\"", "5", "true"}) {
    EXPECT_EQ(dataFor(dropped), R"({"code":"slot_budget_full"})") << dropped;
  }
}

TEST_F(AppBridgeTest, MalformedResponsesSayWhatIsWrong) {
  const std::string noObject = "-32002 Malformed response from Orvane: response was not a JSON object no data";
  for (const char* response :
       {"", "\n", "[]", "5", "{\"ok\":true", "{\"ok\":true}{}", "{\"ok\":true,\"result\":\"\xFF\"}"}) {
    EXPECT_EQ(seen(response), noObject) << response;
  }
  const std::string noError = "-32002 Malformed response from Orvane: error response missing 'error' object no data";
  for (const char* response : {"{}", R"({"ok":false})", R"({"ok":"true"})", R"({"ok":1})", R"({"error":"text"})"}) {
    EXPECT_EQ(seen(response), noError) << response;
  }
}

TEST_F(AppBridgeTest, TheDeepestReadableResponseIsPassed) {
  const std::string deepest = nestedArrays(maxReadNesting - 1);
  const auto application = applicationAnswering(R"({"ok":true,"result":)" + deepest + "}");
  const JSON result = AppBridge::call("m", {});
  EXPECT_EQ(writeCompactJSON(result), deepest);
  EXPECT_EQ(writeCompactJSON(parsed(writePrettyJSON(result))), deepest);
}

TEST_F(AppBridgeTest, ADeeperResponseIsMalformed) {
  for (const std::size_t levels : {maxReadNesting, std::size_t{500000}}) {
    EXPECT_EQ(seen(R"({"ok":true,"result":)" + nestedArrays(levels) + "}"),
              "-32002 Malformed response from Orvane: response was not a JSON object no data");
  }
}

}  // namespace
}  // namespace orvane::test
