#include "docs/generator/tool_reference.h"

#include <algorithm>

#include "tools/documentation.h"

namespace orvane::docs {

namespace {

// Text that Markdown shows as it is.
std::string escaped(std::string_view text) {
  std::string result;
  for (const char c : text) {
    if (std::string_view("\\*<|`~[]").find(c) != std::string_view::npos) result += '\\';
    result += c;
  }
  return result;
}

std::string quote(std::string_view text) {
  std::string result = "> ";
  for (const char c : escaped(text)) {
    if (c != '\n') {
      result += c;
      continue;
    }
    if (result.ends_with(' ')) result.pop_back();
    result += "\n> ";
  }
  return result + "\n";
}

std::string code(std::string_view text) { return "`" + std::string(text) + "`"; }

std::string stringIn(const JSON::Object& object, std::string_view key) {
  const JSON* const value = object.find(key);
  return value == nullptr || value->asString() == nullptr ? std::string() : *value->asString();
}

std::vector<std::string> stringsIn(const JSON::Object& object, std::string_view key) {
  std::vector<std::string> strings;
  const JSON* const value = object.find(key);
  if (value == nullptr || value->asArray() == nullptr) return strings;
  for (const JSON& element : *value->asArray()) strings.push_back(*element.asString());
  return strings;
}

std::string typeOf(const JSON::Object& property) {
  const std::string type = stringIn(property, "type");
  return type == "array" ? "array of strings" : type;
}

std::string toolsetsOf(const MCPToolMetadata& metadata) {
  std::string names;
  for (const MCPToolset toolset : allToolsets) {
    if (!metadata.toolsets.intersects({toolset})) continue;
    names += (names.empty() ? "" : ", ") + code(rawValue(toolset));
  }
  return names;
}

std::string hintsOf(const MCPToolAnnotations& annotations) {
  std::string hints;
  const auto add = [&](bool holds, std::string_view name) {
    if (holds) hints += std::string(hints.empty() ? "" : ", ") + std::string(name);
  };
  add(annotations.readOnlyHint, "read-only");
  add(annotations.destructiveHint.value_or(false), "destructive");
  add(annotations.idempotentHint.value_or(false), "idempotent");
  add(annotations.openWorldHint.value_or(false), "open world");
  return hints.empty() ? "none" : hints;
}

std::string argumentsOf(const ToolHandle& tool) {
  const JSON::Object& schema = *tool.inputSchema().asObject();
  const JSON::Object& properties = *schema.find("properties")->asObject();
  if (properties.begin() == properties.end()) return "It takes no arguments.\n";
  const std::vector<std::string> required = stringsIn(schema, "required");
  std::string rows = "| argument | type | required | description |\n|---|---|---|---|\n";
  for (const JSONMember& member : properties) {
    const JSON::Object& property = *member.value.asObject();
    const bool isRequired = std::find(required.begin(), required.end(), member.key) != required.end();
    std::string about = escaped(stringIn(property, "description"));
    std::replace(about.begin(), about.end(), '\n', ' ');
    std::string values;
    for (const std::string& value : stringsIn(property, "enum")) values += (values.empty() ? "" : ", ") + code(value);
    if (!values.empty()) about += (about.empty() ? "One of " : " One of ") + values + ".";
    rows += "| " + code(member.key) + " | " + typeOf(property) + " | " + (isRequired ? "yes" : "no") + " | " + about +
            (about.empty() ? "|\n" : " |\n");
  }
  return rows;
}

std::string introduction(std::size_t count) {
  return "# The " + std::to_string(count) +
         " tools\n\n"
         "<!-- Made from the program's own data by script/docs. Do not edit: change the tool and run it. -->\n\n"
         "Each tool with its toolsets, its hints, the text that an agent reads, and its arguments. No tool takes "
         "arguments other than\nthose listed; the application checks them for the tools that it answers.\n\n"
         "Hints not named for a tool are false for it. With `--read-only` only tools with the hint *read-only* are "
         "offered.\n\n"
         "Each text is followed by one of two endings. Where a *documentation* file is named, it is\n\n" +
         quote(std::string_view(docPointer("FILE")).substr(2)) + "\nand elsewhere it is the configuration notice:\n\n" +
         quote(std::string_view(configurationNotice()).substr(2));
}

}  // namespace

std::string toolReference(const std::vector<DescribedTool>& tools) {
  std::string document = introduction(tools.size());
  for (const DescribedTool& described : tools) {
    document += "\n## " + std::string(described.tool.name) + "\n\n";
    document +=
        "Toolsets: " + toolsetsOf(*described.metadata) + ". Hints: " + hintsOf(described.metadata->annotations) + ". ";
    document += described.documentationFile.empty() ? "Ends in the configuration notice.\n\n"
                                                    : "Documentation: `" + described.documentationFile + "`.\n\n";
    document += quote(described.text) + "\n" + argumentsOf(described.tool);
  }
  return document;
}

}  // namespace orvane::docs
