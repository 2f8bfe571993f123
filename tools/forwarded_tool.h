// What all forwarded tools share: they hand their arguments to the desktop application and return its answer. The
// application validates, asks for consent, acts; nothing is checked, defaulted or changed on the way.
#pragma once

#include <string>
#include <string_view>

#include "bridge/app_bridge.h"
#include "core/json.h"
#include "tools/documentation.h"

namespace orvane {

/// Base of a forwarded tool type. The tool supplies `name` (also the method it calls), `docFile`, `text` (its
/// description before the pointer to `docFile`) and `inputSchema`.
template <class Tool>
struct ForwardedTool {
  static std::string description() { return std::string(Tool::text) + docPointer(Tool::docFile); }

  static JSON call(const JSON::Object& arguments) { return AppBridge::call(Tool::name, arguments); }
};

}  // namespace orvane
