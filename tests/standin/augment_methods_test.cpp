#include "tests/standin/application_support.h"

namespace orvane::standin {
namespace {

using AugmentMethodsTest = StandinTest;

TEST_F(AugmentMethodsTest, FullSlotBudgetIsRefusedWithTheLoadout) {
  for (const std::string id : {"devops", "qa-engineer", "supportive"})
    call("activate_augment", R"({"id":")" + id + "\"}");
  EXPECT_EQ(refusal("activate_augment", R"({"id":"copy-editor"})"),
            R"(slot_budget_full: All 5 augment slots are in use — deactivate one first. {"loadout":["concise",)"
            R"("code-reviewer","devops","qa-engineer","supportive"],"slotsUsed":5,"slotsTotal":5})");
  EXPECT_TRUE(flagIn(call("activate_augment", R"({"id":"devops"})"), "wasActive"));
  EXPECT_TRUE(flagIn(call("deactivate_augment", R"({"id":"devops"})"), "deactivated", false));
  EXPECT_FALSE(flagIn(call("deactivate_augment", R"({"id":"devops"})"), "deactivated", true));
  EXPECT_TRUE(flagIn(call("activate_augment", R"({"id":"copy-editor"})"), "activated"));
}

}  // namespace
}  // namespace orvane::standin
