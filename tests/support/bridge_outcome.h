// What became of a bridge call, on one line.
#pragma once

#include <string>
#include <string_view>

#include "bridge/app_bridge.h"
#include "core/json_writer.h"
#include "core/rpc_error.h"

namespace orvane::test {

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
