#include "docs/generator/described_tool.h"

#include <algorithm>
#include <cctype>
#include <stdexcept>

#include "server/catalogue.h"
#include "tools/all_tools.h"
#include "tools/documentation.h"

namespace orvane::docs {

namespace {

DescribedTool describe(const ToolHandle& tool) {
  const MCPToolMetadata* const metadata = catalogueEntry(tool.name);
  if (metadata == nullptr) throw std::runtime_error(std::string(tool.name) + " is not in the catalogue");
  const std::string description = tool.description();
  std::string file = description.substr(description.rfind('/') + 1);
  std::string ending = docPointer(file);
  if (!description.ends_with(ending)) {
    file.clear();
    ending = configurationNotice();
  }
  if (!description.ends_with(ending)) {
    throw std::runtime_error("the description of " + std::string(tool.name) + " has no common ending");
  }
  return {tool, metadata, description.substr(0, description.size() - ending.size()), file};
}

}  // namespace

std::vector<DescribedTool> describedTools() {
  std::vector<DescribedTool> tools;
  for (const ToolHandle& tool : allTools()) tools.push_back(describe(tool));
  std::sort(tools.begin(), tools.end(),
            [](const DescribedTool& a, const DescribedTool& b) { return a.tool.name < b.tool.name; });
  return tools;
}

std::string firstSentence(std::string_view text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\n') return std::string(text.substr(0, i));
    // "e.g. a name" goes on with a small letter.
    const bool endsHere = text[i] == '.' && i + 2 < text.size() && text[i + 1] == ' ' &&
                          std::isupper(static_cast<unsigned char>(text[i + 2])) != 0;
    if (endsHere) return std::string(text.substr(0, i + 1));
  }
  return std::string(text);
}

}  // namespace orvane::docs
