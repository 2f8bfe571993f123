// Makes the documents that repeat what the program knows: docs/tools.md, the table of toolsets in README.md, and the
// tools in the manifest of the bundle.
//
//   orvane_docs ROOT           writes them in the source tree ROOT
//   orvane_docs ROOT --check   writes nothing, and fails if one of them is not as it would be written
#include <cstdio>
#include <exception>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

#include "core/json_reader.h"
#include "core/json_writer.h"
#include "docs/generator/described_tool.h"
#include "docs/generator/tool_reference.h"
#include "docs/generator/toolset_table.h"
#include "tests/support/fake_platform.h"

namespace {

using namespace orvane;
using namespace orvane::docs;

std::string contentOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::string withTable(const std::string& document) {
  constexpr std::string_view start = "<!-- toolsets: made by script/docs -->\n";
  constexpr std::string_view end = "<!-- end of toolsets -->\n";
  const std::size_t from = document.find(start);
  const std::size_t to = document.find(end);
  if (from == std::string::npos || to == std::string::npos || to < from) {
    throw std::runtime_error("README.md has no place for the table of toolsets");
  }
  return document.substr(0, from) + std::string(start) + toolsetTable() + document.substr(to);
}

std::string withTools(const std::string& manifest, const std::vector<DescribedTool>& tools) {
  std::optional<JSON::Object> object = readJSONObject(manifest);
  if (!object.has_value()) throw std::runtime_error("the manifest is not a JSON object");
  JSON::Array entries;
  for (const DescribedTool& described : tools) {
    entries.emplace_back(JSON::Object{{"name", described.tool.name}, {"description", firstSentence(described.text)}});
  }
  object->set("tools", std::move(entries));
  object->set("version", ORVANE_VERSION);
  return writePrettyJSON(*object) + "\n";
}

/// Whether the file at `path` is as it should be, after writing it if `isChecking` does not hold.
bool settle(const std::string& path, const std::string& content, bool isChecking) {
  if (contentOf(path) == content) return true;
  if (isChecking) {
    std::fprintf(stderr, "%s is not what the program's data make it. Run script/docs and review the difference.\n",
                 path.c_str());
    return false;
  }
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file << content;
  file.close();
  if (!file) throw std::runtime_error("cannot write " + path);
  std::printf("wrote %s\n", path.c_str());
  return true;
}

bool run(const std::string& root, bool isChecking) {
  test::fakePlatform().applicationSupport = "~/Library/Application Support";
  const std::vector<DescribedTool> tools = describedTools();
  const std::string readme = root + "/README.md";
  const std::string manifest = root + "/packaging/mcpb/manifest.json";
  bool isSettled = settle(root + "/docs/tools.md", toolReference(tools), isChecking);
  // The sizes hold for a user with a name of seven letters.
  test::fakePlatform().applicationSupport = "/Users/someone/Library/Application Support";
  isSettled &= settle(readme, withTable(contentOf(readme)), isChecking);
  isSettled &= settle(manifest, withTools(contentOf(manifest), tools), isChecking);
  return isSettled;
}

}  // namespace

int main(int argc, char** argv) {
  const bool isChecking = argc == 3 && std::string(argv[2]) == "--check";
  if (argc != 2 && !isChecking) {
    std::fputs("usage: orvane_docs ROOT [--check]\n", stderr);
    return 2;
  }
  try {
    return run(argv[1], isChecking) ? 0 : 1;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "orvane_docs: %s\n", error.what());
    return 1;
  }
}
