// What tools/list offers for each choice of toolsets and modes, against what was decided.
#include <map>
#include <set>

#include "tests/support/decided_tools.h"
#include "tests/support/server_test.h"

namespace orvane::test {
namespace {

class RegistryTest : public ServerTest {};

TEST_F(RegistryTest, EveryCombinationOfToolsetsAndModes) {
  for (unsigned chosen = 1; chosen < 128; ++chosen) {
    std::vector<std::string> selected;
    std::string list;
    for (unsigned index = 0; index < decidedToolsets().size(); ++index) {
      if ((chosen >> index & 1U) != 0) {
        selected.push_back(decidedToolsets()[index]);
        list += (list.empty() ? "" : ",") + selected.back();
      }
    }
    // Each selection meets each mode often enough without starting the program 508 times.
    const bool single = selected.size() == 1 || selected.size() == 7;
    for (unsigned mode = 0; mode < 4; ++mode) {
      if (!single && mode != chosen % 4) {
        continue;
      }
      std::vector<std::string> arguments{"--toolsets", list};
      std::vector<std::string> environment;
      if ((mode & 1U) != 0) {
        arguments.emplace_back("--read-only");
      }
      if ((mode & 2U) != 0) {
        environment.emplace_back("ORVANE_ASSISTANT_ORIGIN=1");
      }
      auto server = start(arguments, environment);
      EXPECT_EQ(toolNames(*server), decidedNames(selected, (mode & 1U) != 0, (mode & 2U) != 0)) << list << " " << mode;
      expectCleanEnd(*server);
    }
  }
}

TEST_F(RegistryTest, AnEmptySelectionListsNothing) {
  auto server = start({"--toolsets", "computer", "--read-only"});
  EXPECT_EQ(server->request(R"({"id":1,"method":"tools/list"})"),
            parseJson(R"({"jsonrpc":"2.0","id":1,"result":{"tools":[]}})"));
  expectCleanEnd(*server);
}

TEST_F(RegistryTest, EntriesAreCompleteAndOrdered) {
  auto server = start();
  const Json response = server->request(R"({"id":1,"method":"tools/list","params":{"cursor":"x"}})");
  EXPECT_EQ(response.at("result").as_object().size(), 1U);
  const auto& entries = response.at("result").at("tools").as_array();
  std::map<std::string, DecidedTool> byName;
  for (const DecidedTool& tool : decidedTools()) byName.emplace(tool.name, tool);
  ASSERT_EQ(entries.size(), byName.size());
  auto next = entries.begin();
  for (const auto& [name, tool] : byName) {
    const auto& entry = (next++)->as_object();
    SCOPED_TRACE(name);
    EXPECT_EQ(entry.size(), 4U);
    EXPECT_EQ(entry.at("name"), Json(name));
    EXPECT_EQ(entry.at("annotations"), Json(boost::json::object{{"readOnlyHint", tool.hints[0] == 't'},
                                                                {"destructiveHint", tool.hints[1] == 't'},
                                                                {"idempotentHint", tool.hints[2] == 't'},
                                                                {"openWorldHint", tool.hints[3] == 't'}}));
    const auto& schema = entry.at("inputSchema").as_object();
    EXPECT_EQ(schema.at("type"), Json("object"));
    EXPECT_EQ(schema.at("additionalProperties"), Json(false));
    EXPECT_TRUE(schema.at("properties").is_object());
    EXPECT_FALSE(entry.at("description").as_string().empty());
  }
  expectCleanEnd(*server);
}

TEST_F(RegistryTest, TheConfigurationNoticeIsOnTheToolsDecided) {
  const std::string notice =
      "\n\nIMPORTANT: Do NOT edit ~/.config/orvane/settings.json, replacements.txt, augment files, or any Orvane "
      "configuration file directly \u2014 direct edits race with the running app and corrupt state. To change "
      "settings, "
      "dictionary entries, augments, or the active persona, use Orvane's mutation tools (set_*, add_*, activate_*). If "
      "a "
      "needed mutation tool doesn't exist yet, ask the user to make the change in the Orvane Dashboard rather than "
      "reaching past the app to edit files.\n\nFor user-facing explanations of every Orvane feature (when to use it, "
      "what "
      "each setting does, gotchas), the index lives at: " +
      home_.path() + "/Library/Application Support/Orvane/docs/INDEX.md";
  std::set<std::string> bearers;
  for (const DecidedTool& tool : decidedTools()) {
    if (tool.marks.contains("notice")) bearers.insert(tool.name);
  }
  auto server = start();
  const Json response = server->request(R"({"id":1,"method":"tools/list"})");
  for (const Json& entry : response.at("result").at("tools").as_array()) {
    const std::string name(entry.at("name").as_string());
    const std::string text(entry.at("description").as_string());
    const bool ends =
        text.size() > notice.size() && text.compare(text.size() - notice.size(), notice.size(), notice) == 0;
    EXPECT_EQ(ends, bearers.count(name) != 0) << name;
    if (name == "orvane_version") {
      EXPECT_EQ(text, "Return the running Orvane version." + notice);
    }
  }
  expectCleanEnd(*server);
}

TEST_F(RegistryTest, AFilteredToolIsUnknown) {
  auto server = start({"--toolsets", "voice"}, {"ORVANE_ASSISTANT_ORIGIN=1"});
  for (const DecidedTool& tool : decidedTools()) {
    if (tool.name != "list_tts_voices") {
      expectError(server->request(toolCall(tool.name)), 1, -32602, "Unknown tool: " + tool.name);
    }
  }
  expectCleanEnd(*server);
}

}  // namespace
}  // namespace orvane::test
