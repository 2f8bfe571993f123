// The catalogue: which toolsets each tool belongs to and which hints it carries. It is kept apart from the tool types;
// a tool that it does not hold is not registered.
#pragma once

#include <string_view>

#include "server/tool_metadata.h"

namespace orvane {

/// The entry of the tool `name`, or nullptr.
const MCPToolMetadata* catalogueEntry(std::string_view name);

}  // namespace orvane
