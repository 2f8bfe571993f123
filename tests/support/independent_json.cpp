#include "tests/support/independent_json.h"

#include <gtest/gtest.h>

namespace orvane::test {

namespace {

std::string excerpt(std::string_view text) { return std::string(text.substr(0, 400)); }

void checkError(const boost::json::object& error, const std::string& line) {
  const auto* code = error.if_contains("code");
  const auto* message = error.if_contains("message");
  const auto* data = error.if_contains("data");
  EXPECT_TRUE(code != nullptr && code->is_int64()) << excerpt(line);
  EXPECT_TRUE(message != nullptr && message->is_string()) << excerpt(line);
  EXPECT_TRUE(data == nullptr || !data->is_null()) << "data without data: " << excerpt(line);
  EXPECT_EQ(error.size(), data == nullptr ? 2U : 3U) << excerpt(line);
}

}  // namespace

Json parseJson(std::string_view text) {
  boost::json::parse_options options;
  options.max_depth = 2000;
  boost::json::error_code failure;
  Json value = boost::json::parse(boost::json::string_view(text.data(), text.size()), failure, {}, options);
  if (failure) {
    ADD_FAILURE() << "not JSON (" << failure.message() << "): " << excerpt(text);
    return nullptr;
  }
  return value;
}

void checkResponseLine(const std::string& line) {
  ASSERT_FALSE(line.empty()) << "a blank line on standard output";
  EXPECT_EQ(line.front(), '{') << excerpt(line);
  EXPECT_EQ(line.back(), '}') << excerpt(line);
  const Json value = parseJson(line);
  ASSERT_TRUE(value.is_object()) << excerpt(line);
  const boost::json::object& message = value.get_object();
  const auto* version = message.if_contains("jsonrpc");
  ASSERT_NE(version, nullptr) << excerpt(line);
  EXPECT_EQ(*version, Json("2.0")) << excerpt(line);
  EXPECT_TRUE(message.contains("id")) << excerpt(line);
  EXPECT_NE(message.contains("result"), message.contains("error")) << excerpt(line);
  EXPECT_EQ(message.size(), 3U) << excerpt(line);
  if (const auto* error = message.if_contains("error")) {
    ASSERT_TRUE(error->is_object()) << excerpt(line);
    checkError(error->get_object(), line);
  }
}

}  // namespace orvane::test
