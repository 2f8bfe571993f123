// What tools/list offers for each choice of toolsets and modes, against a table written out by hand.
#include <algorithm>
#include <set>
#include <sstream>

#include "tests/support/server_test.h"

namespace orvane::test {
namespace {

struct Row {
  const char* name;
  const char* toolsets;
  const char* hints;  // readOnly, destructive, idempotent, openWorld: t or f
};

const std::vector<Row> table = {
    {"activate_augment", "augments", "fftf"},
    {"computer_click", "computer", "ftft"},
    {"computer_deliver_text", "computer", "ftft"},
    {"computer_get_screenshot", "computer", "ftft"},
    {"computer_inspect", "computer", "ftft"},
    {"computer_list_apps", "computer", "ftft"},
    {"computer_open", "computer", "ftft"},
    {"computer_press_key", "computer", "ftft"},
    {"computer_read", "computer", "ftft"},
    {"computer_scroll", "computer", "ftft"},
    {"computer_select", "computer", "ftft"},
    {"current_settings", "state", "tftf"},
    {"deactivate_augment", "augments", "fftf"},
    {"get_insights", "state", "tftf"},
    {"get_meeting", "meetings", "tftf"},
    {"get_meeting_notes", "meetings", "tftf"},
    {"get_meeting_transcript", "meetings", "tftf"},
    {"get_slate", "state slate", "tftf"},
    {"list_augments", "state augments", "tftf"},
    {"list_dictionary", "state", "tftf"},
    {"list_input_devices", "state", "tftf"},
    {"list_meetings", "meetings", "tftf"},
    {"list_personas", "state augments", "tftf"},
    {"list_tts_voices", "state voice", "tftf"},
    {"orvane_version", "state", "tftf"},
    {"read_open_file", "state", "tftf"},
    {"read_preferences", "state", "tftf"},
    {"remember_preference", "settings", "fftf"},
    {"search_meetings", "meetings", "tftf"},
    {"set_active_persona", "settings augments", "fftf"},
    {"set_assistant_backend", "settings", "fftf"},
    {"set_assistant_trigger_word", "settings", "fftf"},
    {"set_input_device", "settings", "fftf"},
    {"set_selection_edit_enabled", "settings", "fftf"},
    {"slate_clear", "slate", "fftf"},
    {"slate_close", "slate", "fftf"},
    {"slate_open", "slate", "fftf"},
    {"slate_remove_frontmatter", "slate", "fftf"},
    {"slate_save", "slate", "fftf"},
    {"slate_set_frontmatter", "slate", "fftf"},
    {"slate_set_routing", "slate", "fftf"},
    {"speak", "voice", "ffff"},
};

const std::vector<std::string> allToolsets = {"state", "settings", "voice",   "meetings",
                                              "slate", "computer", "augments"};

bool belongs(const Row& row, const std::set<std::string>& selected) {
  std::istringstream words(row.toolsets);
  std::string word;
  while (words >> word) {
    if (selected.count(word) != 0) {
      return true;
    }
  }
  return false;
}

std::vector<std::string> expectedNames(const std::set<std::string>& selected, bool readOnly, bool assistant) {
  std::vector<std::string> names;
  for (const Row& row : table) {
    const bool speaks = std::string(row.name) == "speak";
    if (belongs(row, selected) && (!readOnly || row.hints[0] == 't') && (!assistant || !speaks)) {
      names.emplace_back(row.name);
    }
  }
  return names;
}

class RegistryTest : public ServerTest {};

TEST_F(RegistryTest, EveryCombinationOfToolsetsAndModes) {
  for (unsigned chosen = 1; chosen < 128; ++chosen) {
    std::set<std::string> selected;
    std::string list;
    for (unsigned index = 0; index < allToolsets.size(); ++index) {
      if ((chosen >> index & 1U) != 0) {
        selected.insert(allToolsets[index]);
        list += (list.empty() ? "" : ",") + allToolsets[index];
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
      EXPECT_EQ(toolNames(*server), expectedNames(selected, (mode & 1U) != 0, (mode & 2U) != 0)) << list << " " << mode;
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
  ASSERT_EQ(entries.size(), table.size());
  for (std::size_t index = 0; index < table.size(); ++index) {
    const auto& entry = entries[index].as_object();
    const Row& row = table[index];
    SCOPED_TRACE(row.name);
    EXPECT_EQ(entry.size(), 4U);
    EXPECT_EQ(entry.at("name"), Json(row.name));
    EXPECT_EQ(entry.at("annotations"), Json(boost::json::object{{"readOnlyHint", row.hints[0] == 't'},
                                                                {"destructiveHint", row.hints[1] == 't'},
                                                                {"idempotentHint", row.hints[2] == 't'},
                                                                {"openWorldHint", row.hints[3] == 't'}}));
    const auto& schema = entry.at("inputSchema").as_object();
    EXPECT_EQ(schema.at("type"), Json("object"));
    EXPECT_EQ(schema.at("additionalProperties"), Json(false));
    EXPECT_TRUE(schema.at("properties").is_object());
    EXPECT_FALSE(entry.at("description").as_string().empty());
  }
  expectCleanEnd(*server);
}

TEST_F(RegistryTest, TheConfigurationNoticeIsOnFourTools) {
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
  const std::set<std::string> bearers{"current_settings", "list_augments", "list_dictionary", "orvane_version"};
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
  for (const Row& row : table) {
    if (std::string(row.name) != "list_tts_voices") {
      expectError(server->request(toolCall(row.name)), 1, -32602, std::string("Unknown tool: ") + row.name);
    }
  }
  expectCleanEnd(*server);
}

}  // namespace
}  // namespace orvane::test
