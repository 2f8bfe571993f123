// The tools, in registration order. Nothing else knows them all.
#pragma once

#include <span>

#include "tools/tool.h"

namespace orvane {

/// Every tool there is, in registration order; names are unique.
std::span<const ToolHandle> allTools();

}  // namespace orvane
