#include "server/startup_options.h"

#include <algorithm>

#include "core/text.h"

namespace orvane {

namespace {

std::optional<std::string> argumentAfter(const std::vector<std::string>& arguments, std::string_view option) {
  const auto found = std::find(arguments.begin(), arguments.end(), option);
  if (found == arguments.end() || found + 1 == arguments.end()) return std::nullopt;
  return *(found + 1);
}

}  // namespace

StartupOptions readStartupOptions(const std::vector<std::string>& arguments, const char* assistantOrigin) {
  return {.agentName = argumentAfter(arguments, "--agent"),
          .launchedByAssistant = assistantOrigin != nullptr && std::string_view(assistantOrigin) == "1",
          .selectedToolsets = parseToolsets(argumentAfter(arguments, "--toolsets")),
          .readOnlyMode = std::find(arguments.begin(), arguments.end(), "--read-only") != arguments.end()};
}

MCPToolsetSet parseToolsets(const std::optional<std::string>& value) {
  MCPToolsetSet selected;
  if (!value.has_value()) return MCPToolsetSet::all();
  for (const std::string_view piece : splitAt(*value, ",")) {
    const std::string name = lowercased(trimBlanksAndNewlines(piece));
    if (name == "all") return MCPToolsetSet::all();
    if (const std::optional<MCPToolset> toolset = mcpToolset(name)) selected.insert(*toolset);
  }
  return selected.empty() ? MCPToolsetSet::all() : selected;
}

}  // namespace orvane
