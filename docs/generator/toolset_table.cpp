#include "docs/generator/toolset_table.h"

#include <string_view>

#include "server/registry.h"

namespace orvane::docs {

namespace {

std::string_view purposeOf(MCPToolset toolset) {
  switch (toolset) {
    case MCPToolset::state:
      return "reading the setup: settings, dictionary, augments, personas, devices, voices, insights, preference "
             "notes, the Slate and the open file";
    case MCPToolset::settings:
      return "changing it: backend, trigger word, input device, highlight-and-correct, persona, preference notes";
    case MCPToolset::voice:
      return "speaking aloud, and which voices there are";
    case MCPToolset::meetings:
      return "captured meetings: finding them, their notes and transcripts";
    case MCPToolset::slate:
      return "the floating Slate window: reading, opening, clearing, saving, its front matter and routing";
    case MCPToolset::computer:
      return "using other applications: inspecting, reading, clicking, typing, scrolling";
    case MCPToolset::augments:
      return "augments and personas: listing and switching them";
  }
  return "";
}

std::string grouped(std::size_t number) {
  std::string digits = std::to_string(number);
  for (std::size_t end = digits.size(); end > 3; end -= 3) digits.insert(end - 3, ",");
  return digits;
}

// A line of the answer to a tools/list with a one-digit id, its line feed included.
std::size_t answerSize(const std::string& entries) {
  constexpr std::string_view frame = "{\"jsonrpc\":\"2.0\",\"id\":1,\"result\":{\"tools\":}}\n";
  return frame.size() + entries.size();
}

std::string row(const std::string& options, MCPToolsetSet toolsets, bool readOnly, std::string_view purpose) {
  ToolRegistry registry(false, toolsets, readOnly);
  const std::size_t bytes = answerSize(registry.listEntriesText());
  // Four bytes to a token is what English text comes to.
  const std::size_t tokens = (bytes / 4 + 50) / 100 * 100;
  return "| " + options + " | " + std::to_string(registry.listEntries().size()) + " | " + grouped(bytes) + " | " +
         grouped(tokens) + " | " + std::string(purpose) + " |\n";
}

}  // namespace

std::string toolsetTable() {
  std::string table = "| options | tools | bytes | tokens, roughly | for |\n|---|---:|---:|---:|---|\n";
  for (const MCPToolset toolset : allToolsets) {
    table += row("`--toolsets " + std::string(rawValue(toolset)) + "`", {toolset}, false, purposeOf(toolset));
  }
  MCPToolsetSet withoutComputer = MCPToolsetSet();
  std::string names;
  for (const MCPToolset toolset : allToolsets) {
    if (toolset == MCPToolset::computer) continue;
    withoutComputer.insert(toolset);
    names += (names.empty() ? "" : ",") + std::string(rawValue(toolset));
  }
  table += row("`--toolsets " + names + "`", withoutComputer, false, "everything but other applications");
  table += row("`--read-only`", MCPToolsetSet::all(), true, "everything that changes nothing");
  table += row("(no option)", MCPToolsetSet::all(), false, "everything");
  return table;
}

}  // namespace orvane::docs
