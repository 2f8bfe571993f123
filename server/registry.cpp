#include "server/registry.h"

#include <cstdlib>
#include <optional>

#include "core/json_writer.h"
#include "core/rpc_error.h"
#include "server/catalogue.h"
#include "tools/documentation.h"

namespace orvane {

JSON::Object annotationsObject(const MCPToolMetadata* metadata) {
  JSON::Object object;
  if (metadata == nullptr) return object;
  const auto add = [&](std::string_view name, std::optional<bool> hint) {
    if (hint.has_value()) object.set(name, *hint);
  };
  const MCPToolAnnotations& annotations = metadata->annotations;
  add("readOnlyHint", annotations.readOnlyHint);
  add("destructiveHint", annotations.destructiveHint);
  add("idempotentHint", annotations.idempotentHint);
  add("openWorldHint", annotations.openWorldHint);
  return object;
}

ToolRegistry::ToolRegistry(bool launchedByAssistant, MCPToolsetSet toolsets, bool readOnly,
                           std::span<const ToolHandle> candidates) {
  for (const ToolHandle& tool : candidates) {
    const MCPToolMetadata* metadata = catalogueEntry(tool.name);
    if (metadata == nullptr) continue;
    if (readOnly && !metadata->annotations.readOnlyHint) continue;
    if (!metadata->toolsets.intersects(toolsets)) continue;
    if (launchedByAssistant && tool.name == "speak") continue;
    if (!tools.emplace(tool.name, tool).second) std::abort();
  }
}

JSON ToolRegistry::call(std::string_view name, const JSON::Object& arguments) const {
  const auto tool = tools.find(name);
  if (tool == tools.end()) throw RPCError(rpc_code::invalidParams, "Unknown tool: " + std::string(name));
  return tool->second.call(arguments);
}

JSON::Array ToolRegistry::listEntries() const {
  JSON::Array entries;
  entries.reserve(tools.size());
  for (const auto& [name, tool] : tools) {
    entries.emplace_back(JSON::Object{{"name", name},
                                      {"description", tool.description()},
                                      {"inputSchema", tool.inputSchema()},
                                      {"annotations", annotationsObject(catalogueEntry(name))}});
  }
  return entries;
}

const std::string& ToolRegistry::listEntriesText() {
  std::string directory = docsPath("");
  if (listText.empty() || directory != listedDirectory) {
    listText = writeCompactJSON(listEntries());
    listedDirectory = std::move(directory);
  }
  return listText;
}

}  // namespace orvane
