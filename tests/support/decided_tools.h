// What was decided of the tools, written out by hand a second time: tests compare the program with it.
#pragma once

#include <set>
#include <string>
#include <vector>

namespace orvane::test {

struct DecidedTool {
  std::string name;
  std::set<std::string> toolsets;
  std::string hints;  ///< readOnly, destructive, idempotent, openWorld: t or f
  /// "local" for one that answers by itself, "notice" for one whose description ends in the configuration notice; a
  /// tool without the first is forwarded, and one without the second points at a documentation file.
  std::set<std::string> marks;
};

/// Every tool, in registration order.
const std::vector<DecidedTool>& decidedTools();

/// The names of the toolsets, in the order of their declaration.
const std::vector<std::string>& decidedToolsets();

/// The tools that a server with these toolsets offers, in ascending order of name.
std::vector<std::string> decidedNames(const std::vector<std::string>& toolsets = decidedToolsets(),
                                      bool isReadOnly = false, bool isLaunchedByAssistant = false);

}  // namespace orvane::test
