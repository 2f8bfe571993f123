// docs/tools.md: the reference of all tools.
#pragma once

#include <string>
#include <vector>

#include "docs/generator/described_tool.h"

namespace orvane::docs {

/// The whole document, in Markdown.
std::string toolReference(const std::vector<DescribedTool>& tools);

}  // namespace orvane::docs
