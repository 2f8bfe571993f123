// What the documents say of one tool: its description taken apart, and its entry in the catalogue.
#pragma once

#include <string>
#include <vector>

#include "server/tool_metadata.h"
#include "tools/tool.h"

namespace orvane::docs {

/// A tool with what its description says before the common ending.
struct DescribedTool {
  ToolHandle tool;
  const MCPToolMetadata* metadata;  ///< never nullptr
  std::string text;                 ///< the description without its ending
  std::string documentationFile;    ///< the file that the ending points to; empty for the configuration notice
};

/// All tools in ascending order of name. Throws std::runtime_error for a tool that the catalogue lacks or whose
/// description has no common ending.
std::vector<DescribedTool> describedTools();

/// The first sentence of `text`, its full stop included.
std::string firstSentence(std::string_view text);

}  // namespace orvane::docs
