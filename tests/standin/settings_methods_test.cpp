#include "tests/standin/application_support.h"

namespace orvane::standin {
namespace {

using SettingsMethodsTest = StandinTest;

TEST_F(SettingsMethodsTest, ChosenDeviceStaysUntilCleared) {
  call("set_input_device", R"({"name":"USB Mic"})");
  EXPECT_EQ(textIn(objectIn(call("list_input_devices"), "selection"), "active"), "USB Mic");
  for (const std::string name : {R"({"name":""})", R"({"name":"default"})"}) {
    call("set_input_device", R"({"name":"USB Mic"})");
    EXPECT_EQ(textIn(call("set_input_device", name), "active"), "Built-in Microphone");
  }
}

TEST_F(SettingsMethodsTest, UnknownNamesComeBackWithTheValidOnes) {
  EXPECT_EQ(refusal("set_input_device", R"({"name":"Nope"})"),
            R"(validation_failed: unknown input device: Nope {"visibleDevices":["Built-in Microphone","USB Mic",)"
            R"("Conference Headset"]})");
  EXPECT_EQ(
      refusal("set_assistant_backend", R"({"name":"Nope"})"),
      R"(validation_failed: unknown assistant backend: Nope {"validBackends":["claude","codex","ollama","local"]})");
  EXPECT_EQ(refusal("set_active_persona", R"({"id":"x"})"),
            R"(validation_failed: unknown persona: x {"validPersonas":["default","pirate","professor","night-owl"]})");
}

TEST_F(SettingsMethodsTest, TriggerWordMustNotBeEmpty) {
  EXPECT_EQ(refusal("set_assistant_trigger_word", R"({"phrase":" "})"),
            "validation_failed: the trigger word must not be empty");
  EXPECT_EQ(textIn(call("set_assistant_trigger_word", R"({"phrase":"hey you"})"), "previous"), "computer");
}

TEST_F(SettingsMethodsTest, PersonaReplacesAllActiveOnes) {
  EXPECT_EQ(textsIn(call("list_personas"), "active").size(), 2U);
  call("set_active_persona", R"({"id":"pirate"})");
  EXPECT_EQ(textsIn(call("list_personas"), "active"), std::vector<std::string>{"pirate"});
}

}  // namespace
}  // namespace orvane::standin
