// What the tests of the real program share: a private home per test, and short ways to ask and to look at answers.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/support/server_process.h"

namespace orvane::test {

class ServerTest : public ::testing::Test {
 protected:
  /// Starts the program with these arguments.
  std::unique_ptr<ServerProcess> start(std::vector<std::string> arguments = {},
                                       std::vector<std::string> environment = {});
  /// Starts the program as `launch` says.
  std::unique_ptr<ServerProcess> start(const Launch& launch);

  /// Ends input and expects exit status 0, no further output and exactly `diagnostics` on standard error.
  static void expectCleanEnd(ServerProcess& server, const std::string& diagnostics = "");

  PrivateHome home_;
};

/// The JSON text of `text` as a string, quotes included.
std::string quoted(std::string_view text);

/// A tools/call line with id 1 and `arguments` as JSON text.
std::string toolCall(std::string_view name, std::string_view arguments = "{}");

/// The parsed text of a tool result, after checking the result's shape.
Json toolResult(const Json& response);

/// The names that tools/list gives, in the order given.
std::vector<std::string> toolNames(ServerProcess& server);

/// Checks that `response` is an error with this id, code, message and, where `data` is not empty, data (as JSON text).
void expectError(const Json& response, const Json& id, int code, const std::string& message,
                 const std::string& data = "");

/// Checks that the program is still there and answers.
void expectPong(ServerProcess& server);

}  // namespace orvane::test
