// What the command line and the environment ask for. No option can be wrong: what is missing, unknown or unreadable
// leaves the default.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "server/tool_metadata.h"

namespace orvane {

struct StartupOptions {
  std::optional<std::string> agentName;                   ///< after the first --agent
  bool launchedByAssistant = false;                       ///< ORVANE_ASSISTANT_ORIGIN is exactly "1"
  MCPToolsetSet selectedToolsets = MCPToolsetSet::all();  ///< after the first --toolsets
  bool readOnlyMode = false;                              ///< --read-only is given
};

/// Reads the options. `arguments` is the whole argument list, the program's path included: it is searched like the
/// rest. `assistantOrigin` is the value of ORVANE_ASSISTANT_ORIGIN, or nullptr if it is not set.
StartupOptions readStartupOptions(const std::vector<std::string>& arguments, const char* assistantOrigin);

/// The toolsets that `value`, a comma-separated list of names in any case, selects. All of them if it is absent, names
/// none that exists or names "all"; unknown names are skipped.
MCPToolsetSet parseToolsets(const std::optional<std::string>& value);

}  // namespace orvane
