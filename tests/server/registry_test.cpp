#include "server/registry.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <string>
#include <vector>

#include "core/json_writer.h"
#include "core/rpc_error.h"
#include "tests/support/decided_tools.h"
#include "tests/support/fake_platform.h"
#include "tests/support/json_text.h"
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
  EXPECT_EQ(namesFor(false, everything, false), decidedNames());
}

TEST_F(ToolRegistryTest, ReadOnlyLeavesThoseThatRead) {
  EXPECT_EQ(namesFor(false, everything, true), decidedNames(decidedToolsets(), true));
}

TEST_F(ToolRegistryTest, OneSharedToolsetIsEnough) {
  for (const MCPToolset toolset : allToolsets) {
    EXPECT_EQ(namesFor(false, {toolset}, false), decidedNames({std::string(rawValue(toolset))})) << rawValue(toolset);
  }
  EXPECT_EQ(namesFor(false, {settings, augments}, true), decidedNames({"settings", "augments"}, true));
}

TEST_F(ToolRegistryTest, TheAssistantIsNotOfferedSpeech) {
  EXPECT_EQ(namesFor(true, {voice}, false), decidedNames({"voice"}, false, true));
  EXPECT_EQ(namesFor(true, everything, false), decidedNames(decidedToolsets(), false, true));
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
  Names expected;
  for (const DecidedTool& tool : decidedTools()) expected.push_back(tool.name);
  Names actual;
  for (const ToolHandle& tool : allTools()) actual.emplace_back(tool.name);
  EXPECT_EQ(actual, expected);
}

}  // namespace
}  // namespace orvane::test
