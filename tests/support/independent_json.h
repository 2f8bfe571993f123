// JSON as an independent parser reads it, so that the tests of the real program do not judge it by its own reader.
#pragma once

#include <boost/json.hpp>
#include <string>
#include <string_view>

namespace orvane::test {

using Json = boost::json::value;

/// Parses one strict JSON document; null and a test failure when it is none.
Json parseJson(std::string_view text);

/// Fails the running test unless `line` is exactly one JSON-RPC 2.0 response and nothing else.
void checkResponseLine(const std::string& line);

}  // namespace orvane::test
