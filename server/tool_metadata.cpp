#include "server/tool_metadata.h"

namespace orvane {

namespace {

constexpr std::array<std::string_view, allToolsets.size()> toolsetNames{"state", "settings", "voice",   "meetings",
                                                                        "slate", "computer", "augments"};

}  // namespace

std::string_view rawValue(MCPToolset toolset) { return toolsetNames[static_cast<std::size_t>(toolset)]; }

std::optional<MCPToolset> mcpToolset(std::string_view rawValue) {
  for (const MCPToolset toolset : allToolsets) {
    if (toolsetNames[static_cast<std::size_t>(toolset)] == rawValue) return toolset;
  }
  return std::nullopt;
}

}  // namespace orvane
