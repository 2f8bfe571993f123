#include "tests/standin/application_support.h"

namespace orvane::standin {
namespace {

using SettingsMethods = StandinTest;

TEST_F(SettingsMethods, ServesAllThirtySixMethods) { EXPECT_EQ(application_.methods().size(), 36U); }

TEST_F(SettingsMethods, UnknownMethodIsRefused) {
  EXPECT_EQ(refusal("list_augments"), "validation_failed: unknown method: list_augments");
}

TEST_F(SettingsMethods, ChosenDeviceStaysUntilCleared) {
  call("set_input_device", R"({"name":"USB Mic"})");
  EXPECT_EQ(textIn(objectIn(call("list_input_devices"), "selection"), "active"), "USB Mic");
  for (const std::string name : {R"({"name":""})", R"({"name":"default"})"}) {
    call("set_input_device", R"({"name":"USB Mic"})");
    EXPECT_EQ(textIn(call("set_input_device", name), "active"), "Built-in Microphone");
  }
}

TEST_F(SettingsMethods, UnknownNamesComeBackWithTheValidOnes) {
  EXPECT_EQ(refusal("set_input_device", R"({"name":"Nope"})"),
            R"(validation_failed: unknown input device: Nope {"visibleDevices":["Built-in Microphone","USB Mic",)"
            R"("Conference Headset"]})");
  EXPECT_EQ(
      refusal("set_assistant_backend", R"({"name":"Nope"})"),
      R"(validation_failed: unknown assistant backend: Nope {"validBackends":["claude","codex","ollama","local"]})");
  EXPECT_EQ(refusal("set_active_persona", R"({"id":"x"})"),
            R"(validation_failed: unknown persona: x {"validPersonas":["default","pirate","professor","night-owl"]})");
}

TEST_F(SettingsMethods, TriggerWordMustNotBeEmpty) {
  EXPECT_EQ(refusal("set_assistant_trigger_word", R"({"phrase":" "})"),
            "validation_failed: the trigger word must not be empty");
  EXPECT_EQ(textIn(call("set_assistant_trigger_word", R"({"phrase":"hey you"})"), "previous"), "computer");
}

TEST_F(SettingsMethods, PersonaReplacesAllActiveOnes) {
  EXPECT_EQ(textsIn(call("list_personas"), "active").size(), 2U);
  call("set_active_persona", R"({"id":"pirate"})");
  EXPECT_EQ(textsIn(call("list_personas"), "active"), std::vector<std::string>{"pirate"});
}

TEST_F(SettingsMethods, FullSlotBudgetIsRefusedWithTheLoadout) {
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

TEST_F(SettingsMethods, SpeakCountsCharactersAndGroupsLines) {
  const std::string longest(1999, 'x');
  EXPECT_TRUE(flagIn(call("speak", R"({"text":")" + longest + "é\"}"), "queued"));
  EXPECT_EQ(refusal("speak", R"({"text":")" + longest + "xx\"}"),
            R"(validation_failed: text is too long: 2001 characters, at most 2000 per call )"
            R"({"characters":2001,"maxCharacters":2000})");
  EXPECT_EQ(textIn(call("speak", R"({"text":"a","_agent":"demo-agent"})"), "voice"), "birch");
  call("speak", R"({"text":"a","identifier":"turn"})");
  EXPECT_EQ(integerIn(call("speak", R"({"text":"b","identifier":"turn"})"), "line"), 2);
  EXPECT_EQ(refusal("speak", R"({"text":"a","voice":"x"})"),
            R"(validation_failed: unknown voice: x {"validVoices":["amber","birch","cobalt"]})");
}

TEST(Consent, CoversChangesAndMeetingsApart) {
  const JSON::Object world = readObjectFile(defaultWorldPath());
  Application application(world, Consent::denied, Consent::unanswered);
  const auto codeOf = [&](const char* method) {
    try {
      application.call(method, {});
    } catch (const Refusal& refused) {
      return refused.code();
    }
    return MCPMutationErrorCode::internalError;
  };
  EXPECT_EQ(codeOf("set_active_persona"), MCPMutationErrorCode::consentDenied);
  EXPECT_EQ(codeOf("get_meeting"), MCPMutationErrorCode::consentPendingTimeout);
  EXPECT_NO_THROW(application.call("list_personas", {}));
}

}  // namespace
}  // namespace orvane::standin
