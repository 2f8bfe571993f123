// What holds for every tool, whatever it does.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/decided_tools.h"
#include "tests/support/fake_platform.h"
#include "tests/support/json_text.h"
#include "tools/all_tools.h"
#include "tools/documentation.h"
#include "tools/schema.h"

namespace orvane::test {
namespace {

using testing::AnyOf;
using testing::EndsWith;
using testing::IsSubsetOf;
using testing::MatchesRegex;
using testing::Not;
using testing::UnorderedElementsAre;

/// The object under `key` of `object`; an empty one, and a failure, if there is none.
const JSON::Object& objectIn(const JSON::Object& object, std::string_view key) {
  static const JSON::Object none;
  const JSON* value = object.find(key);
  if (value != nullptr && value->asObject() != nullptr) return *value->asObject();
  ADD_FAILURE() << "no object under " << key;
  return none;
}

const JSON::Object& propertiesOf(const ToolHandle& tool) {
  static const JSON::Object none;
  const JSON::Object* schema = tool.inputSchema().asObject();
  if (schema != nullptr) return objectIn(*schema, "properties");
  ADD_FAILURE() << "the schema is no object";
  return none;
}

std::set<std::string> keysOf(const JSON::Object& object) {
  std::set<std::string> keys;
  for (const JSONMember& member : object) keys.insert(member.key);
  return keys;
}

JSON valueIn(const JSON::Object& object, std::string_view key) {
  const JSON* value = object.find(key);
  return value == nullptr ? JSON() : *value;
}

/// The strings of the array under `key` of `object`, in order; none if there is no such key. Fails for anything else.
std::vector<std::string> stringsIn(const JSON::Object& object, std::string_view key) {
  std::vector<std::string> strings;
  const JSON* value = object.find(key);
  if (value == nullptr) return strings;
  if (value->asArray() == nullptr) {
    ADD_FAILURE() << key << " is no array";
    return strings;
  }
  for (const JSON& element : *value->asArray()) {
    if (element.asString() == nullptr) {
      ADD_FAILURE() << key << " holds something else than strings";
      continue;
    }
    strings.push_back(*element.asString());
  }
  return strings;
}

TEST(ToolInventoryTest, NamesAreDifferent) {
  std::set<std::string_view> names;
  for (const ToolHandle& tool : allTools()) names.insert(tool.name);
  EXPECT_EQ(names.size(), allTools().size());
}

TEST(ToolInventoryTest, NamesAreLowerSnakeCase) {
  for (const ToolHandle& tool : allTools()) {
    EXPECT_THAT(std::string(tool.name), MatchesRegex("[a-z]+(_[a-z]+)*"));
  }
}

TEST(ToolInventoryTest, EachSchemaIsOfAnObjectWithoutOtherProperties) {
  for (const ToolHandle& tool : allTools()) {
    SCOPED_TRACE(tool.name);
    const JSON::Object* schema = tool.inputSchema().asObject();
    ASSERT_NE(schema, nullptr);
    EXPECT_EQ(valueIn(*schema, "type"), JSON("object"));
    EXPECT_EQ(valueIn(*schema, "additionalProperties"), JSON(false));
    // Neither anyOf nor oneOf nor allOf at the top: some clients refuse a tool that has them.
    EXPECT_THAT(keysOf(*schema), AnyOf(UnorderedElementsAre("type", "properties", "additionalProperties"),
                                       UnorderedElementsAre("type", "properties", "required", "additionalProperties")));
  }
}

// Defaults and limits stand in the descriptions only, so no "default", "minimum" or "maximum" can be here.
TEST(ToolInventoryTest, PropertiesHaveOnlyTheKeywordsThatAreAdvertised) {
  for (const ToolHandle& tool : allTools()) {
    for (const JSONMember& property : propertiesOf(tool)) {
      SCOPED_TRACE(std::string(tool.name) + "." + property.key);
      const JSON::Object* schema = property.value.asObject();
      ASSERT_NE(schema, nullptr);
      EXPECT_THAT(keysOf(*schema), IsSubsetOf({"type", "description", "enum", "items"}));
      const JSON type = valueIn(*schema, "type");
      EXPECT_THAT(type, AnyOf(JSON("string"), JSON("boolean"), JSON("integer"), JSON("array")));
      EXPECT_EQ(valueIn(*schema, "items"), type == JSON("array") ? JSON(JSON::Object{{"type", "string"}}) : JSON());
    }
  }
}

TEST(ToolInventoryTest, EnumerationsBelongToStringsAndHoldDifferentValues) {
  for (const ToolHandle& tool : allTools()) {
    for (const JSONMember& property : propertiesOf(tool)) {
      SCOPED_TRACE(std::string(tool.name) + "." + property.key);
      const JSON::Object* schema = property.value.asObject();
      ASSERT_NE(schema, nullptr);
      if (schema->find("enum") == nullptr) continue;
      const std::vector<std::string> values = stringsIn(*schema, "enum");
      EXPECT_EQ(valueIn(*schema, "type"), JSON("string"));
      EXPECT_GE(values.size(), 2U);
      EXPECT_EQ(std::set<std::string>(values.begin(), values.end()).size(), values.size());
    }
  }
}

TEST(ToolInventoryTest, RequiredNamesAreDifferentPropertiesAndNotNone) {
  for (const ToolHandle& tool : allTools()) {
    SCOPED_TRACE(tool.name);
    const JSON::Object* schema = tool.inputSchema().asObject();
    ASSERT_NE(schema, nullptr);
    if (schema->find("required") == nullptr) continue;
    const std::vector<std::string> required = stringsIn(*schema, "required");
    EXPECT_FALSE(required.empty());
    EXPECT_EQ(std::set<std::string>(required.begin(), required.end()).size(), required.size());
    EXPECT_THAT(required, IsSubsetOf(keysOf(propertiesOf(tool))));
  }
}

TEST(ToolInventoryTest, EachSchemaIsBuiltOnce) {
  for (const ToolHandle& tool : allTools()) EXPECT_EQ(&tool.inputSchema(), &tool.inputSchema()) << tool.name;
}

TEST(ToolInventoryTest, ToolsWithoutArgumentsShareOneSchema) {
  for (const ToolHandle& tool : allTools()) {
    EXPECT_EQ(&tool.inputSchema() == &emptyInputSchema(), propertiesOf(tool).empty()) << tool.name;
  }
}

TEST(ToolInventoryTest, NoOtherSchemaIsShared) {
  std::set<const JSON*> schemas;
  for (const ToolHandle& tool : allTools()) {
    if (propertiesOf(tool).empty()) continue;
    EXPECT_TRUE(schemas.insert(&tool.inputSchema()).second) << tool.name;
  }
}

TEST(ToolInventoryTest, EachDescriptionEndsInItsDocumentationOrTheConfigurationNotice) {
  std::set<std::string_view> configurationTools;
  for (const DecidedTool& tool : decidedTools()) {
    if (tool.marks.contains("notice")) configurationTools.insert(tool.name);
  }
  for (const ToolHandle& tool : allTools()) {
    SCOPED_TRACE(tool.name);
    const std::string description = tool.description();
    if (configurationTools.contains(tool.name)) {
      EXPECT_THAT(description, EndsWith(configurationNotice()));
      continue;
    }
    const std::string fileName = description.substr(description.rfind('/') + 1);
    EXPECT_THAT(fileName, MatchesRegex("[a-z]+(-[a-z]+)*\\.md"));
    EXPECT_THAT(description, EndsWith(docPointer(fileName)));
    EXPECT_THAT(description, Not(testing::HasSubstr(configurationNotice())));
  }
}

TEST(ToolInventoryTest, EachDescriptionHasATextBeforeItsEnding) {
  for (const ToolHandle& tool : allTools()) {
    EXPECT_THAT(tool.description(), MatchesRegex("[A-Z][a-z].*\\.\n\n.*")) << tool.name;
  }
}

TEST(ToolInventoryTest, DescriptionsFollowTheDocumentationDirectory) {
  const FakeHome home;
  for (const ToolHandle& tool : allTools()) {
    fakePlatform().applicationSupport = "/here";
    std::string description = tool.description();
    const std::size_t path = description.rfind("/here/");
    ASSERT_NE(path, std::string::npos) << tool.name;
    fakePlatform().applicationSupport = "/elsewhere";
    EXPECT_EQ(description.replace(path, 6, "/elsewhere/"), tool.description()) << tool.name;
  }
}

}  // namespace
}  // namespace orvane::test
