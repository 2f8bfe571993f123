#include "server/catalogue.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "tests/support/tool_count.h"
#include "tools/all_tools.h"

namespace orvane::test {
namespace {

using enum MCPToolset;

const std::set<std::string> readingTools = {
    "current_settings",  "list_dictionary",        "list_augments",      "orvane_version",
    "read_preferences",  "list_personas",          "list_input_devices", "list_tts_voices",
    "get_insights",      "list_meetings",          "search_meetings",    "get_meeting",
    "get_meeting_notes", "get_meeting_transcript", "get_slate",          "read_open_file"};
const std::set<std::string> computerTools = {
    "computer_list_apps", "computer_inspect",      "computer_read",      "computer_get_screenshot", "computer_open",
    "computer_click",     "computer_deliver_text", "computer_press_key", "computer_scroll",         "computer_select"};

struct ToolsOfToolset {
  MCPToolset toolset;
  std::set<std::string> tools;
};

const std::vector<ToolsOfToolset> members = {
    {state,
     {"current_settings", "list_dictionary", "list_augments", "orvane_version", "read_preferences", "list_personas",
      "list_input_devices", "list_tts_voices", "get_insights", "get_slate", "read_open_file"}},
    {settings,
     {"remember_preference", "set_assistant_backend", "set_assistant_trigger_word", "set_input_device",
      "set_selection_edit_enabled", "set_active_persona"}},
    {voice, {"list_tts_voices", "speak"}},
    {meetings, {"list_meetings", "search_meetings", "get_meeting", "get_meeting_notes", "get_meeting_transcript"}},
    {slate,
     {"get_slate", "slate_open", "slate_close", "slate_clear", "slate_save", "slate_set_routing",
      "slate_set_frontmatter", "slate_remove_frontmatter"}},
    {computer, computerTools},
    {augments, {"list_augments", "list_personas", "set_active_persona", "activate_augment", "deactivate_augment"}},
};

TEST(CatalogueTest, HoldsEveryToolAndNoOtherName) {
  ASSERT_EQ(allTools().size(), toolCount);
  for (const ToolHandle& tool : allTools()) EXPECT_NE(catalogueEntry(tool.name), nullptr) << tool.name;
  for (const char* name : {"", "Speak", "speak ", "list_replacements", "set_settings"}) {
    EXPECT_EQ(catalogueEntry(name), nullptr) << name;
  }
}

TEST(CatalogueTest, EveryToolIsInItsToolsetsAndNoOther) {
  for (const auto& [toolset, tools] : members) {
    for (const ToolHandle& tool : allTools()) {
      EXPECT_EQ(catalogueEntry(tool.name)->toolsets.intersects({toolset}), tools.contains(std::string(tool.name)))
          << tool.name << " in " << rawValue(toolset);
    }
  }
}

TEST(CatalogueTest, HintsAreTheOnesDecided) {
  int reading = 0;
  int acting = 0;
  for (const ToolHandle& tool : allTools()) {
    SCOPED_TRACE(tool.name);
    const std::string name(tool.name);
    const bool isReading = readingTools.contains(name);
    const bool isActing = computerTools.contains(name);
    const MCPToolAnnotations& hints = catalogueEntry(name)->annotations;
    EXPECT_EQ(hints.readOnlyHint, isReading);
    EXPECT_EQ(hints.destructiveHint, isActing);
    EXPECT_EQ(hints.idempotentHint, !isActing && name != "speak");
    EXPECT_EQ(hints.openWorldHint, isActing);
    reading += isReading ? 1 : 0;
    acting += isActing ? 1 : 0;
  }
  EXPECT_EQ(reading, 16);
  EXPECT_EQ(acting, 10);
}

}  // namespace
}  // namespace orvane::test
