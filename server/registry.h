// The tools that this process offers, chosen once at start-up.
#pragma once

#include <map>
#include <span>
#include <string>
#include <string_view>

#include "core/json.h"
#include "server/tool_metadata.h"
#include "tools/all_tools.h"
#include "tools/tool.h"

namespace orvane {

/// What a tools/list entry says of a tool's behaviour: the hints that are there; none where there is no metadata.
JSON::Object annotationsObject(const MCPToolMetadata* metadata);

class ToolRegistry {
 public:
  /// Those of `candidates` that the catalogue knows and that belong to one of `toolsets`, only those that read if
  /// `readOnly`, and without "speak" if `launchedByAssistant` (the assistant speaks for itself). Ends the process if
  /// two of them have one name.
  ToolRegistry(bool launchedByAssistant, MCPToolsetSet toolsets, bool readOnly,
               std::span<const ToolHandle> candidates = allTools());

  /// Runs the tool `name`. Throws RPCError -32602 if there is none, and whatever the tool throws.
  JSON call(std::string_view name, const JSON::Object& arguments) const;

  /// One tools/list entry per tool (Model Context Protocol, Tool), in ascending order of name.
  JSON::Array listEntries() const;

  /// The JSON text of listEntries(). It is kept, and made anew only when the documentation directory, which the
  /// descriptions name, is another one than last time. Valid until the next call. Throws JSONWriteError if that
  /// directory's path is not UTF-8.
  const std::string& listEntriesText();

 private:
  std::map<std::string_view, ToolHandle> tools;
  std::string listedDirectory;
  std::string listText;
};

}  // namespace orvane
