#include "tools/schema.h"

#include <gtest/gtest.h>

#include "core/json_writer.h"
#include "tests/support/json_text.h"

namespace orvane::test {
namespace {

std::string written(const JSON& schema) { return writeCompactJSON(schema); }

TEST(SchemaTest, PropertyHasItsTypeAndDescription) {
  EXPECT_EQ(written(objectSchema({stringProperty("key", "What it is."), booleanProperty("flag", "Whether."),
                                  integerProperty("count", "How many.")})),
            R"({"type":"object","properties":{)"
            R"("key":{"type":"string","description":"What it is."},)"
            R"("flag":{"type":"boolean","description":"Whether."},)"
            R"("count":{"type":"integer","description":"How many."}},)"
            R"("additionalProperties":false})");
}

TEST(SchemaTest, PropertyWithoutDescriptionHasNoSuchKeyword) {
  EXPECT_EQ(written(objectSchema({stringProperty("key"), booleanProperty("flag"), integerProperty("count")})),
            R"({"type":"object","properties":{"key":{"type":"string"},"flag":{"type":"boolean"},)"
            R"("count":{"type":"integer"}},"additionalProperties":false})");
}

TEST(SchemaTest, ListPropertyTellsThatItsItemsAreStrings) {
  EXPECT_EQ(
      written(objectSchema({stringListProperty("keys", "Some.")})),
      R"({"type":"object","properties":{"keys":{"type":"array","items":{"type":"string"},"description":"Some."}},)"
      R"("additionalProperties":false})");
}

TEST(SchemaTest, RequiredPropertiesAreListedInTheirOrder) {
  EXPECT_EQ(written(objectSchema(
                {stringProperty("z").required(), stringProperty("m"), stringListProperty("a", "Some.").required()})),
            R"({"type":"object","properties":{"z":{"type":"string"},"m":{"type":"string"},)"
            R"("a":{"type":"array","items":{"type":"string"},"description":"Some."}},)"
            R"("required":["z","a"],"additionalProperties":false})");
}

TEST(SchemaTest, EnumerationKeepsItsOrder) {
  EXPECT_EQ(written(objectSchema({stringProperty("by", "How.").oneOf({"z", "a", "m"})})),
            R"({"type":"object","properties":{"by":{"type":"string","enum":["z","a","m"],"description":"How."}},)"
            R"("additionalProperties":false})");
}

TEST(SchemaTest, RequiredAndEnumerationCombineEitherWay) {
  EXPECT_EQ(objectSchema({stringProperty("by").oneOf({"a", "b"}).required()}),
            objectSchema({stringProperty("by").required().oneOf({"a", "b"})}));
}

TEST(SchemaTest, EmptySchemaAllowsNoPropertiesAndRequiresNone) {
  EXPECT_EQ(written(emptyInputSchema()), R"({"type":"object","properties":{},"additionalProperties":false})");
}

TEST(SchemaTest, EmptySchemaIsOneObject) { EXPECT_EQ(&emptyInputSchema(), &emptyInputSchema()); }

TEST(SchemaTest, FlagSchemaRequiresABooleanWithoutDescription) {
  EXPECT_EQ(written(flagSchema()),
            R"({"type":"object","properties":{"enabled":{"type":"boolean"}},"required":["enabled"],)"
            R"("additionalProperties":false})");
}

}  // namespace
}  // namespace orvane::test
