// The one way a tool reaches the desktop application: one connection, one request, one response, no state between
// calls.
#pragma once

#include <string_view>

#include "core/json.h"

namespace orvane {

class AppBridge {
 public:
  /// Calls `method` of the running application with `args` and returns its result unchanged. Blocks until the
  /// application has answered and closed: up to 30 s for a stalled write and between two reads. "_agent" and "_origin"
  /// in `args` are replaced by what the server was started with, or removed. Throws RPCError for every failure of the
  /// connection and every error the application reports, and JSONWriteError when the request cannot be written as JSON.
  /// System calls: socket(2), setsockopt(2), connect(2), getpeereid(3) or its like, send(2), shutdown(2), read(2).
  static JSON call(std::string_view method, const JSON::Object& args);
};

}  // namespace orvane
