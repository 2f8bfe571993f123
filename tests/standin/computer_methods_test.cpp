#include "tests/standin/application_support.h"

namespace orvane::standin {
namespace {

class ComputerMethodsTest : public StandinTest {
 protected:
  // The arguments {"state_id": of a fresh inspection, ...}.
  std::string on(const std::string& app, const std::string& rest) {
    const JSON::Object state = call("computer_inspect", R"({"target":")" + app + "\"}");
    return R"({"state_id":")" + textIn(state, "computer_state_id") + "\"," + rest + "}";
  }
};

TEST_F(ComputerMethodsTest, ListsWindowsOnlyForAQuery) {
  const auto count = [&](const std::string& arguments) {
    return listIn(call("computer_list_apps", arguments), "apps").size();
  };
  EXPECT_EQ(count("{}"), 4U);
  EXPECT_EQ(count(R"({"include_helpers":true,"include_system":true})"), 6U);
  const JSON::Object found = call("computer_list_apps", R"({"query":"INBOX"})");
  ASSERT_EQ(listIn(found, "apps").size(), 1U);
  EXPECT_EQ(listIn(objectOf(listIn(found, "apps")[0]), "windows").size(), 2U);
}

TEST_F(ComputerMethodsTest, StatesExpireWithNewerInspections) {
  const std::string read = on("Letterbox", R"("mode":"visible_text")");
  for (int i = 0; i < 7; ++i) call("computer_inspect");
  EXPECT_NO_THROW(call("computer_read", read));
  call("computer_inspect");
  EXPECT_EQ(refusal("computer_read", read).find("validation_failed: expired computer_state_id: cs-1;"), 0U);
  EXPECT_EQ(refusal("computer_get_screenshot", R"({"state_id":"x"})"),
            R"(validation_failed: unknown computer_state_id: x {"state_id":"x"})");
}

TEST_F(ComputerMethodsTest, RestrictedApplicationsAndFieldsAreRefused) {
  EXPECT_NE(refusal("computer_inspect", R"({"target":"Password Keeper"})").find(R"("restricted":true)"),
            std::string::npos);
  EXPECT_NE(refusal("computer_inspect", R"({"window_id":51})").find(R"("restricted":true)"), std::string::npos);
  EXPECT_NE(refusal("computer_open", R"({"kind":"app","value":"com.example.passwordkeeper"})").find("restricted"),
            std::string::npos);
  EXPECT_EQ(refusal("computer_deliver_text", on("Wanderer", R"("target_id":"t-password","text":"x")"))
                .find("validation_failed: the target is a restricted field"),
            0U);
  EXPECT_EQ(textIn(call("computer_read", on("Wanderer", R"("mode":"visible_text")")), "text").find("secret"),
            std::string::npos);
}

TEST_F(ComputerMethodsTest, FilterReachesBeyondTheRankedForty) {
  EXPECT_EQ(listIn(call("computer_inspect", R"({"target":"Wanderer"})"), "top_targets").size(), 40U);
  EXPECT_EQ(listIn(call("computer_inspect", R"({"target":"Wanderer","filter":"switzerland"})"), "top_targets").size(),
            1U);
}

TEST_F(ComputerMethodsTest, SyntheticIsAnAliasThatConflicts) {
  const std::string target = R"("target_id":"t-receipt")";
  EXPECT_EQ(textIn(call("computer_click", on("Letterbox", target)), "route_used"), "ax_action");
  EXPECT_EQ(textIn(call("computer_click", on("Letterbox", target + R"(,"synthetic":true)")), "route_used"),
            "skylight_pointer_click");
  EXPECT_EQ(refusal("computer_click", on("Letterbox", target + R"(,"synthetic":true,"route":"ax_action")")),
            R"(validation_failed: "synthetic" true conflicts with route ax_action)");
  EXPECT_NE(refusal("computer_click", on("Letterbox", target + R"(,"action":"pick")")).find("does not support pick"),
            std::string::npos);
}

TEST_F(ComputerMethodsTest, ExistingTextIsReplacedOnlyOnRequest) {
  const std::string target = R"("target_id":"t-to","text":)";
  EXPECT_EQ(refusal("computer_deliver_text", on("Letterbox", target + R"("x")"))
                .find("validation_failed: the target already holds text"),
            0U);
  EXPECT_EQ(refusal("computer_deliver_text", on("Letterbox", target + R"("")")).find("validation_failed: empty text"),
            0U);
  EXPECT_TRUE(
      flagIn(call("computer_deliver_text", on("Letterbox", target + R"("","replace_existing":true)")), "verified"));
  call("computer_deliver_text", on("Letterbox", target + R"("caro@example.com")"));
  EXPECT_NE(
      textIn(call("computer_read", on("Letterbox", R"("mode":"visible_text")")), "text").find("To: caro@example.com"),
      std::string::npos);
  EXPECT_FALSE(
      flagIn(call("computer_deliver_text", on("Scribbler", R"("target_id":"t-canvas","text":"x")")), "verified", true));
}

TEST_F(ComputerMethodsTest, RepetitionsAreClampedAndNamesChecked) {
  EXPECT_EQ(integerIn(call("computer_press_key", on("Letterbox", R"("key":"a","modifiers":["command"],"count":500)")),
                      "count"),
            50);
  EXPECT_EQ(refusal("computer_press_key", on("Letterbox", R"("key":"F13")")).find("validation_failed: unknown key"),
            0U);
  EXPECT_EQ(refusal("computer_press_key", on("Letterbox", R"("key":"a","modifiers":["hyper"])"))
                .find("validation_failed: unknown modifier"),
            0U);
  EXPECT_EQ(integerIn(call("computer_scroll", on("Letterbox", R"("direction":"down")")), "amount"), 3);
  EXPECT_EQ(integerIn(call("computer_scroll", on("Letterbox", R"("direction":"down","amount":99)")), "amount"), 50);
}

TEST_F(ComputerMethodsTest, SelectNeedsAnUnambiguousOption) {
  const auto select = [&](const std::string& value) {
    return on("Wanderer", R"("target_id":"t-country","value":")" + value + "\"");
  };
  EXPECT_EQ(textIn(call("computer_select", select("Australia +61")), "value"), "Australia +61");
  EXPECT_EQ(refusal("computer_select", select("Aust")),
            R"(validation_failed: ambiguous option: Aust {"candidates":["Australia +61","Austria +43"]})");
  EXPECT_EQ(refusal("computer_select", select("Atlantis")).find("validation_failed: no such option"), 0U);
}

TEST_F(ComputerMethodsTest, OpeningStartsAnApplicationOrAPage) {
  EXPECT_EQ(refusal("computer_inspect", R"({"target":"Abacus"})").find("validation_failed: no running application"),
            0U);
  call("computer_open", R"({"kind":"app","value":"Abacus"})");
  EXPECT_NO_THROW(call("computer_inspect", R"({"target":"Abacus"})"));
  call("computer_open", R"({"kind":"url","value":"https://example.com/a"})");
  EXPECT_EQ(textIn(call("computer_read", on("Wanderer", R"("mode":"url")")), "url"), "https://example.com/a");
  EXPECT_EQ(refusal("computer_open", R"({"kind":"url","value":"a"})"), "validation_failed: not an absolute URL: a");
}

}  // namespace
}  // namespace orvane::standin
