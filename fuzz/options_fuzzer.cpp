// The command line: no arguments are wrong. The input is the arguments, separated by zero bytes, the first of them the
// value of ORVANE_ASSISTANT_ORIGIN.
#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "core/text.h"
#include "fuzz/require.h"
#include "server/startup_options.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  using orvane::fuzz::require;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  std::vector<std::string> arguments;
  for (const std::string_view piece : orvane::splitAt(text, std::string_view("\0", 1))) arguments.emplace_back(piece);
  const std::string origin = arguments.front();
  arguments.erase(arguments.begin());

  const orvane::StartupOptions options = orvane::readStartupOptions(arguments, origin.c_str());
  require(options.launchedByAssistant == (origin == "1"), "the origin is exactly 1");
  require(!options.selectedToolsets.empty(), "some toolset is selected");
  const bool isReadOnly = std::count(arguments.begin(), arguments.end(), "--read-only") > 0;
  require(options.readOnlyMode == isReadOnly, "--read-only counts wherever it stands");
  const auto agent = std::find(arguments.begin(), arguments.end(), "--agent");
  const bool hasName = agent != arguments.end() && agent + 1 != arguments.end();
  require(options.agentName.has_value() == hasName, "a name follows --agent");
  if (hasName) require(*options.agentName == *(agent + 1), "the name is taken as it stands");
  if (std::find(arguments.begin(), arguments.end(), "--toolsets") == arguments.end()) {
    require(options.selectedToolsets == orvane::MCPToolsetSet::all(), "all toolsets are the default");
  }
  return 0;
}
