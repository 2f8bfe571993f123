#include "server/registry.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <set>
#include <string>
#include <vector>

#include "core/json_writer.h"
#include "core/rpc_error.h"
#include "tests/support/fake_platform.h"
#include "tests/support/json_text.h"
#include "tests/support/tool_count.h"
#include "tools/all_tools.h"

namespace orvane::test {
namespace {

using enum MCPToolset;
using Names = std::vector<std::string>;

constexpr MCPToolsetSet everything = MCPToolsetSet::all();

Names namesOf(const ToolRegistry& registry) {
  Names names;
  for (const JSON& entry : registry.listEntries()) names.push_back(*entry.asObject()->find("name")->asString());
  return names;
}

Names namesFor(bool launchedByAssistant, MCPToolsetSet toolsets, bool readOnly) {
  return namesOf(ToolRegistry(launchedByAssistant, toolsets, readOnly));
}

class ToolRegistryTest : public testing::Test {
 protected:
  FakeHome home_;
};

TEST_F(ToolRegistryTest, ByDefaultAllAreListedInAscendingOrder) {
  const Names names = namesFor(false, everything, false);
  EXPECT_EQ(names.size(), toolCount);
  EXPECT_TRUE(std::is_sorted(names.begin(), names.end()));
  EXPECT_EQ(std::set<std::string>(names.begin(), names.end()).size(), toolCount);
}

TEST_F(ToolRegistryTest, ReadOnlyLeavesTheSixteenThatRead) {
  EXPECT_EQ(
      namesFor(false, everything, true),
      (Names{"current_settings", "get_insights", "get_meeting", "get_meeting_notes", "get_meeting_transcript",
             "get_slate", "list_augments", "list_dictionary", "list_input_devices", "list_meetings", "list_personas",
             "list_tts_voices", "orvane_version", "read_open_file", "read_preferences", "search_meetings"}));
}

TEST_F(ToolRegistryTest, OneSharedToolsetIsEnough) {
  EXPECT_EQ(namesFor(false, {voice}, false), (Names{"list_tts_voices", "speak"}));
  EXPECT_EQ(namesFor(false, {augments}, false),
            (Names{"activate_augment", "deactivate_augment", "list_augments", "list_personas", "set_active_persona"}));
  EXPECT_EQ(namesFor(false, {slate}, true), (Names{"get_slate"}));
  EXPECT_EQ(namesFor(false, {meetings}, false),
            (Names{"get_meeting", "get_meeting_notes", "get_meeting_transcript", "list_meetings", "search_meetings"}));
  EXPECT_EQ(namesFor(false, {settings, augments}, true), (Names{"list_augments", "list_personas"}));
}

TEST_F(ToolRegistryTest, TheAssistantIsNotOfferedSpeech) {
  EXPECT_EQ(namesFor(true, {voice}, false), (Names{"list_tts_voices"}));
  const Names names = namesFor(true, everything, false);
  EXPECT_EQ(names.size(), toolCount - 1);
  EXPECT_EQ(std::count(names.begin(), names.end(), "speak"), 0);
}

TEST_F(ToolRegistryTest, AnEmptyRegistryIsValid) {
  ToolRegistry registry(false, {computer}, true);
  EXPECT_EQ(registry.listEntries(), JSON::Array());
  EXPECT_EQ(registry.listEntriesText(), "[]");
}

TEST_F(ToolRegistryTest, CallsByExactNameOnly) {
  const ToolRegistry registry(false, everything, false);
  EXPECT_NE(registry.call("current_settings", {}).asObject(), nullptr);
  for (const std::string& name :
       {std::string("nothing"), std::string(), std::string("Current_settings"), std::string("current_settings "),
        std::string("current_settings\0", 17), std::string("a\n\"b\x01")}) {
    try {
      registry.call(name, {});
      ADD_FAILURE() << name;
    } catch (const RPCError& error) {
      EXPECT_EQ(error.code, -32602);
      EXPECT_EQ(error.message, "Unknown tool: " + name);
      EXPECT_FALSE(error.data.has_value());
    }
  }
}

TEST_F(ToolRegistryTest, AFilteredToolIsUnknown) {
  const ToolRegistry slateOnly(false, {slate}, false);
  EXPECT_THROW(slateOnly.call("current_settings", {}), RPCError);
  const ToolRegistry readOnly(false, everything, true);
  EXPECT_THROW(readOnly.call("remember_preference", {{"text", "x"}}), RPCError);
}

TEST_F(ToolRegistryTest, WhatAToolThrowsPassesThrough) {
  const ToolRegistry registry(false, everything, false);
  try {
    registry.call("get_slate", {});
    ADD_FAILURE();
  } catch (const RPCError& error) {
    EXPECT_EQ(error.code, -32001);
  }
}

TEST_F(ToolRegistryTest, EntriesHaveTheirFourMembersAndAllFourHints) {
  for (const JSON& entry : ToolRegistry(false, everything, false).listEntries()) {
    SCOPED_TRACE(writeCompactJSON(entry));
    const JSON::Object& object = *entry.asObject();
    EXPECT_EQ(object.size(), 4U);
    ASSERT_NE(object.find("description"), nullptr);
    ASSERT_NE(object.find("annotations"), nullptr);
    const JSON::Object& hints = *object.find("annotations")->asObject();
    EXPECT_EQ(hints.size(), 4U);
    for (const char* hint : {"readOnlyHint", "destructiveHint", "idempotentHint", "openWorldHint"}) {
      ASSERT_NE(hints.find(hint), nullptr) << hint;
      EXPECT_NE(hints.find(hint)->asBool(), nullptr) << hint;
    }
    const JSON::Object& schema = *object.find("inputSchema")->asObject();
    EXPECT_EQ(*schema.find("type"), JSON("object"));
    EXPECT_EQ(*schema.find("additionalProperties"), JSON(false));
    EXPECT_NE(schema.find("properties")->asObject(), nullptr);
  }
}

TEST_F(ToolRegistryTest, HintsOfTheOddOnes) {
  const auto hintsOf = [](std::string_view name) -> std::string {
    for (const JSON& entry : ToolRegistry(false, everything, false).listEntries()) {
      const JSON::Object& object = *entry.asObject();
      if (*object.find("name") == JSON(name)) return writePrettyJSON(*object.find("annotations"));
    }
    return {};
  };
  EXPECT_EQ(hintsOf("speak"), canonical(R"({"readOnlyHint":false,"destructiveHint":false,
                                                  "idempotentHint":false,"openWorldHint":false})"));
  EXPECT_EQ(hintsOf("computer_read"), canonical(R"({"readOnlyHint":false,"destructiveHint":true,
                                                          "idempotentHint":false,"openWorldHint":true})"));
  EXPECT_EQ(hintsOf("slate_clear"), canonical(R"({"readOnlyHint":false,"destructiveHint":false,
                                                        "idempotentHint":true,"openWorldHint":false})"));
}

TEST_F(ToolRegistryTest, AHintThatIsAbsentIsNotSent) {
  EXPECT_EQ(annotationsObject(nullptr), JSON::Object());
  MCPToolMetadata metadata;
  metadata.annotations.readOnlyHint = true;
  EXPECT_EQ(annotationsObject(&metadata), (JSON::Object{{"readOnlyHint", true}}));
  metadata.annotations.idempotentHint = false;
  EXPECT_EQ(annotationsObject(&metadata), (JSON::Object{{"readOnlyHint", true}, {"idempotentHint", false}}));
}

TEST_F(ToolRegistryTest, AToolThatTheCatalogueDoesNotKnowIsLeftOut) {
  std::vector<ToolHandle> tools(allTools().begin(), allTools().begin() + 2);
  tools[0].name = "uncatalogued";
  const ToolRegistry registry(false, everything, false, tools);
  EXPECT_EQ(namesOf(registry), (Names{"list_dictionary"}));
  EXPECT_THROW(registry.call("uncatalogued", {}), RPCError);
}

TEST_F(ToolRegistryTest, TwoToolsOfOneNameEndTheProcess) {
  const std::vector<ToolHandle> tools(2, allTools().front());
  EXPECT_EXIT(ToolRegistry(false, everything, false, tools), testing::KilledBySignal(SIGABRT), "");
}

TEST_F(ToolRegistryTest, TheKeptTextFollowsTheDocumentationDirectory) {
  ToolRegistry registry(false, everything, false);
  const std::string atHome = registry.listEntriesText();
  EXPECT_EQ(parsed(atHome), JSON(registry.listEntries()));
  EXPECT_NE(atHome.find(home_.file("Library/Application Support/Orvane/docs/INDEX.md")), std::string::npos);
  EXPECT_EQ(registry.listEntriesText(), atHome);
  fakePlatform().applicationSupport = "/elsewhere";
  const std::string elsewhere = registry.listEntriesText();
  EXPECT_EQ(elsewhere.find(home_.path()), std::string::npos);
  EXPECT_NE(elsewhere.find("/elsewhere/Orvane/docs/INDEX.md"), std::string::npos);
  fakePlatform().applicationSupport.reset();
  EXPECT_EQ(registry.listEntriesText(), atHome);
}

TEST_F(ToolRegistryTest, RegistrationOrderIsKept) {
  const Names expected = {"current_settings",
                          "list_dictionary",
                          "list_augments",
                          "orvane_version",
                          "computer_list_apps",
                          "computer_inspect",
                          "computer_read",
                          "computer_get_screenshot",
                          "computer_open",
                          "computer_click",
                          "computer_deliver_text",
                          "computer_press_key",
                          "computer_scroll",
                          "computer_select",
                          "read_preferences",
                          "remember_preference",
                          "list_personas",
                          "list_input_devices",
                          "list_tts_voices",
                          "get_insights",
                          "list_meetings",
                          "search_meetings",
                          "get_meeting",
                          "get_meeting_notes",
                          "get_meeting_transcript",
                          "set_active_persona",
                          "set_assistant_backend",
                          "set_assistant_trigger_word",
                          "set_input_device",
                          "set_selection_edit_enabled",
                          "speak",
                          "activate_augment",
                          "deactivate_augment",
                          "slate_open",
                          "slate_close",
                          "slate_clear",
                          "slate_save",
                          "slate_set_routing",
                          "slate_set_frontmatter",
                          "slate_remove_frontmatter",
                          "get_slate",
                          "read_open_file"};
  Names actual;
  for (const ToolHandle& tool : allTools()) actual.emplace_back(tool.name);
  EXPECT_EQ(actual, expected);
}

}  // namespace
}  // namespace orvane::test
