#include "server/tool_metadata.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace orvane::test {
namespace {

using enum MCPToolset;

TEST(MCPToolsetTest, RawValuesGoBothWays) {
  const std::vector<std::string> names = {"state", "settings", "voice", "meetings", "slate", "computer", "augments"};
  ASSERT_EQ(allToolsets.size(), names.size());
  for (std::size_t i = 0; i < names.size(); ++i) {
    EXPECT_EQ(rawValue(allToolsets[i]), names[i]);
    EXPECT_EQ(mcpToolset(names[i]), allToolsets[i]);
  }
  for (const char* other : {"", "State", "STATE", " state", "state ", "all", "states"}) {
    EXPECT_EQ(mcpToolset(other), std::nullopt) << other;
  }
}

TEST(MCPToolsetSetTest, HoldsWhatWasPutIn) {
  EXPECT_TRUE(MCPToolsetSet().empty());
  EXPECT_FALSE(MCPToolsetSet().intersects(MCPToolsetSet::all()));
  EXPECT_TRUE((MCPToolsetSet{state, voice}).intersects({voice, slate}));
  EXPECT_FALSE((MCPToolsetSet{state, voice}).intersects({slate, computer}));
  MCPToolsetSet set{state};
  set.insert(state);
  EXPECT_EQ(set, (MCPToolsetSet{state}));
}

}  // namespace
}  // namespace orvane::test
