#include "server/catalogue.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "tests/support/decided_tools.h"

namespace orvane::test {
namespace {

TEST(CatalogueTest, HoldsEveryToolAndNoOtherName) {
  for (const DecidedTool& tool : decidedTools()) EXPECT_NE(catalogueEntry(tool.name), nullptr) << tool.name;
  for (const char* name : {"", "Speak", "speak ", "list_replacements", "set_settings"}) {
    EXPECT_EQ(catalogueEntry(name), nullptr) << name;
  }
}

TEST(CatalogueTest, EveryToolIsInItsToolsetsAndNoOther) {
  for (const DecidedTool& tool : decidedTools()) {
    ASSERT_NE(catalogueEntry(tool.name), nullptr) << tool.name;
    for (const MCPToolset toolset : allToolsets) {
      EXPECT_EQ(catalogueEntry(tool.name)->toolsets.intersects({toolset}),
                tool.toolsets.contains(std::string(rawValue(toolset))))
          << tool.name << " in " << rawValue(toolset);
    }
  }
}

TEST(CatalogueTest, HintsAreTheOnesDecided) {
  for (const DecidedTool& tool : decidedTools()) {
    ASSERT_NE(catalogueEntry(tool.name), nullptr) << tool.name;
    const MCPToolAnnotations& hints = catalogueEntry(tool.name)->annotations;
    std::string letters(1, hints.readOnlyHint ? 't' : 'f');
    for (const std::optional<bool> hint : {hints.destructiveHint, hints.idempotentHint, hints.openWorldHint}) {
      letters += !hint.has_value() ? '-' : *hint ? 't' : 'f';
    }
    EXPECT_EQ(letters, tool.hints) << tool.name;
  }
}

}  // namespace
}  // namespace orvane::test
