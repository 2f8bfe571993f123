#include "tests/support/server_test.h"

#include <sys/wait.h>

namespace orvane::test {

std::unique_ptr<ServerProcess> ServerTest::start(std::vector<std::string> arguments,
                                                 std::vector<std::string> environment) {
  Launch launch;
  launch.arguments = std::move(arguments);
  launch.environment = std::move(environment);
  return start(launch);
}

std::unique_ptr<ServerProcess> ServerTest::start(const Launch& launch) {
  return std::make_unique<ServerProcess>(home_, launch);
}

void ServerTest::expectCleanEnd(ServerProcess& server, const std::string& diagnostics) {
  const std::vector<std::string> rest = server.finish();
  EXPECT_TRUE(rest.empty()) << rest.size() << " lines too many, the first: " << rest.front().substr(0, 400);
  const int status = server.wait();
  EXPECT_TRUE(WIFEXITED(status)) << "wait status " << status;
  EXPECT_EQ(WEXITSTATUS(status), 0);
  EXPECT_EQ(server.standardError(), diagnostics);
}

std::string quoted(std::string_view text) {
  return boost::json::serialize(Json(boost::json::string_view(text.data(), text.size())));
}

std::string toolCall(std::string_view name, std::string_view arguments) {
  return R"({"jsonrpc":"2.0","id":1,"method":"tools/call","params":{"name":)" + quoted(name) + R"(,"arguments":)" +
         std::string(arguments) + "}}";
}

Json toolResult(const Json& response) {
  const Json* result = response.is_object() ? response.get_object().if_contains("result") : nullptr;
  if (result == nullptr || !result->is_object()) {
    ADD_FAILURE() << "not a result: " << boost::json::serialize(response).substr(0, 400);
    return nullptr;
  }
  const auto& object = result->get_object();
  EXPECT_EQ(object.size(), 2U);
  EXPECT_EQ(object.at("isError"), Json(false));
  const auto& content = object.at("content").as_array();
  EXPECT_EQ(content.size(), 1U);
  const auto& item = content.at(0).as_object();
  EXPECT_EQ(item.size(), 2U);
  EXPECT_EQ(item.at("type"), Json("text"));
  return parseJson(std::string_view(item.at("text").as_string().data(), item.at("text").as_string().size()));
}

std::vector<std::string> toolNames(ServerProcess& server) {
  const Json response = server.request(R"({"jsonrpc":"2.0","id":"list","method":"tools/list"})");
  std::vector<std::string> names;
  for (const Json& entry : response.at("result").at("tools").as_array()) {
    names.emplace_back(entry.at("name").as_string().c_str());
  }
  return names;
}

void expectError(const Json& response, const Json& id, int code, const std::string& message, const std::string& data) {
  boost::json::object error{{"code", code}, {"message", message}};
  if (!data.empty()) {
    error["data"] = parseJson(data);
  }
  const Json expected = boost::json::object{{"jsonrpc", "2.0"}, {"id", id}, {"error", error}};
  EXPECT_EQ(response, expected) << boost::json::serialize(response).substr(0, 400);
}

void expectPong(ServerProcess& server) {
  const Json response = server.request(R"({"jsonrpc":"2.0","id":"pong","method":"ping"})");
  EXPECT_EQ(response, parseJson(R"({"jsonrpc":"2.0","id":"pong","result":{}})"));
}

}  // namespace orvane::test
