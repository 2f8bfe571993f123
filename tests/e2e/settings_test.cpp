// The settings snapshot, from real files in a private home.

#include "tests/support/server_test.h"

namespace orvane::test {
namespace {

const std::string settingsFile = ".config/orvane/settings.json";
const std::string defaults =
    R"({"assistantBackend":null,"assistantEnabled":false,"assistantTriggerWord":"computer","aiCorrectionEnabled":false,)"
    R"("dictationHotkey":"rightOption","sttModel":null,"llmModel":null,"inputDeviceIndex":null,"ttsEnabled":true,)"
    R"("agentVoices":{}})";

class SettingsTest : public ServerTest {
 protected:
  void SetUp() override { server = start(); }
  void TearDown() override {
    expectCleanEnd(*server);
    server.reset();
  }

  Json snapshot() { return toolResult(server->request(toolCall("current_settings", R"({"ignored":[1]})"))); }

  // The snapshot with this file, compared with the defaults changed by `changes`.
  void expectChanges(const std::string& file, const std::string& changes) {
    home_.write(settingsFile, file);
    Json expected = parseJson(defaults);
    const Json changed = parseJson(changes);
    for (const auto& member : changed.get_object()) {
      expected.get_object()[member.key()] = member.value();
    }
    EXPECT_EQ(snapshot(), expected) << file;
  }

  std::unique_ptr<ServerProcess> server;
};

TEST_F(SettingsTest, WithoutAFileEverythingIsDefault) { EXPECT_EQ(snapshot(), parseJson(defaults)); }

TEST_F(SettingsTest, WhatIsNoObjectGivesDefaults) {
  for (const char* file : {"", " ", "null", "[]", "5", "\"x\"", "{", "{\"ttsEnabled\":false", "{\"ttsEnabled\":false}x",
                           "\xff\xfe", "{}", "{\"ttsEnabled\":false,}"}) {
    expectChanges(file, "{}");
  }
}

TEST_F(SettingsTest, ADirectoryInItsPlaceGivesDefaults) {
  home_.write(settingsFile + "/inside", "x");
  EXPECT_EQ(snapshot(), parseJson(defaults));
}

TEST_F(SettingsTest, EveryFieldIsReported) {
  expectChanges(
      R"({"assistantBackend":"b/x","assistantEnabled":true,"assistantTrigger":"hey","contextMode":true,)"
      R"("dictationHotkey":{"name":"fn"},"sttModel":"s","llmModel":"l","inputDevice":3,"ttsEnabled":false,)"
      R"("agentVoices":{"a":"heart2","b":"Heart2","c":"heart2 ","heart2":"x","":""}})",
      R"({"assistantBackend":"b/x","assistantEnabled":true,"assistantTriggerWord":"hey","aiCorrectionEnabled":true,)"
      R"("dictationHotkey":"fn","sttModel":"s","llmModel":"l","inputDeviceIndex":3,"ttsEnabled":false,)"
      R"("agentVoices":{"a":"lumen","b":"Heart2","c":"heart2 ","heart2":"x","":""}})");
}

TEST_F(SettingsTest, EmptyStringsAndZero) {
  expectChanges(R"({"assistantBackend":"","assistantTrigger":"","sttModel":"","llmModel":"","inputDevice":0})",
                R"({"assistantTriggerWord":"","sttModel":"","llmModel":"","inputDeviceIndex":0})");
  expectChanges(R"({"inputDevice":-1})", R"({"inputDeviceIndex":-1})");
  expectChanges(R"({"inputDevice":9223372036854775807})", R"({"inputDeviceIndex":9223372036854775807})");
}

TEST_F(SettingsTest, NullCountsAsAbsent) {
  expectChanges(
      R"({"assistantBackend":null,"assistantEnabled":null,"assistantTrigger":null,"contextMode":null,)"
      R"("dictationHotkey":null,"sttModel":null,"llmModel":null,"inputDevice":null,"ttsEnabled":null,"agentVoices":null})",
      "{}");
  expectChanges(R"({"ttsEnabled":false,"dictationHotkey":{"name":null}})", R"({"ttsEnabled":false})");
}

TEST_F(SettingsTest, OneWrongTypeResetsAllButTheHotkey) {
  for (const char* wrong : {R"("assistantBackend":1)", R"("assistantEnabled":"true")", R"("assistantEnabled":1)",
                            R"("assistantTrigger":[])", R"("contextMode":0)", R"("llmModel":{})", R"("sttModel":false)",
                            R"("inputDevice":"1")", R"("inputDevice":true)", R"("agentVoices":[])",
                            R"("agentVoices":{"a":1})", R"("agentVoices":{"a":null})", R"("agentVoices":"x")",
                            R"("ttsEnabled":"no")", R"("inputDevice":1.5)", R"("inputDevice":9223372036854775808)"}) {
    expectChanges(
        std::string(R"({"assistantBackend":"x","dictationHotkey":{"name":"fn"},"ttsEnabled":false,)") + wrong + "}",
        R"({"dictationHotkey":"fn"})");
  }
}

TEST_F(SettingsTest, TheHotkeyIsReadTolerantly) {
  expectChanges(R"({"dictationHotkey":"leftOption","ttsEnabled":false})", R"({"dictationHotkey":"leftOption"})");
  expectChanges(R"({"dictationHotkey":"","ttsEnabled":false})", R"({"dictationHotkey":""})");
  expectChanges(R"({"dictationHotkey":{"rawValue":"r"},"ttsEnabled":false})",
                R"({"dictationHotkey":"r","ttsEnabled":false})");
  expectChanges(R"({"dictationHotkey":{"rawValue":"r","name":"n"},"ttsEnabled":false})",
                R"({"dictationHotkey":"n","ttsEnabled":false})");
  expectChanges(R"({"dictationHotkey":{"name":5,"rawValue":"r"},"ttsEnabled":false})", R"({"dictationHotkey":"r"})");
  expectChanges(R"({"dictationHotkey":{"name":5,"rawValue":6}})", "{}");
  expectChanges(R"({"dictationHotkey":{},"ttsEnabled":false})", R"({"ttsEnabled":false})");
  expectChanges(R"({"dictationHotkey":5,"ttsEnabled":false})", "{}");
  expectChanges(R"({"dictationHotkey":["x"],"ttsEnabled":false})", "{}");
  expectChanges(R"({"dictationHotkey":{"name":""},"ttsEnabled":false})",
                R"({"dictationHotkey":"","ttsEnabled":false})");
}

TEST_F(SettingsTest, OtherKeysAreIgnored) {
  expectChanges(
      R"({"other":{"deep":[null,1e400]},"TTSEnabled":"x","dictationHotkey":{"name":"n","keyCode":"x"},"ttsEnabled":false})",
      R"({"dictationHotkey":"n","ttsEnabled":false})");
}

TEST_F(SettingsTest, TheFileIsReadOnEveryCall) {
  expectChanges(R"({"assistantTrigger":"one"})", R"({"assistantTriggerWord":"one"})");
  expectChanges(R"({"assistantTrigger":"two"})", R"({"assistantTriggerWord":"two"})");
  expectChanges("broken", "{}");
  expectChanges(R"({"assistantTrigger":"three"})", R"({"assistantTriggerWord":"three"})");
}

}  // namespace
}  // namespace orvane::test
