// A call over the bridge inside the test process: an application at the bridge's own path, what it answers, and what
// became of the call.
#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "bridge/app_bridge.h"
#include "core/error_text.h"
#include "core/json_writer.h"
#include "core/rpc_error.h"
#include "protocol/mcp_socket_path.h"
#include "tests/support/scripted_application.h"
#include "tests/support/sizes.h"

namespace orvane::test {

/// A response of the application; the outcome of a call that it answers is "[1]".
inline const std::string okResponse = "{\"ok\":true,\"result\":[1]}\n";

/// The outcome of a call where no one listens.
inline const std::string notRunning = "-32001 Orvane app is not running — open the app and try again. no data";

/// The outcome of a call in which the system call `name` failed with the errno value `number`.
inline std::string failureOf(const std::string& name, int number) {
  return "-32000 " + name + "() failed: " + errorText(number) + " no data";
}

/// An application where the bridge looks for it.
inline ScriptedApplication applicationWith(ScriptedApplication::Script script) {
  return ScriptedApplication(MCPSocketPath::resolve(), std::move(script));
}

/// The same, which gives every request the answer `bytes`.
inline ScriptedApplication applicationAnswering(std::string bytes) {
  return applicationWith(answerWith(std::move(bytes)));
}

/// The compact JSON of the call's result, or the code, message and data ("no data" without) of its failure.
inline std::string outcomeOfCall(std::string_view method = "m", const JSON::Object& args = {}) {
  try {
    return writeCompactJSON(AppBridge::call(method, args));
  } catch (const RPCError& error) {
    return std::to_string(error.code) + " " + error.message + " " +
           (error.data.has_value() ? writeCompactJSON(*error.data) : "no data");
  }
}

}  // namespace orvane::test
