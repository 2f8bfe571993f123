#include "tools/local/settings.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/fake_platform.h"
#include "tests/support/file_content.h"
#include "tests/support/json_text.h"
#include "tools/documentation.h"

namespace orvane::test {
namespace {

class CurrentSettingsTest : public testing::Test {
 protected:
  JSON::Object settingsFor(const std::string& content) const {
    writeFile(home_.configurationFile("settings.json"), content);
    return current();
  }

  static JSON::Object current() {
    const JSON result = CurrentSettingsTool::call({});
    return *result.asObject();
  }

  /// One member of the result for a file with this content.
  std::string member(const std::string& key, const std::string& content) const {
    return writeCompactJSON(*settingsFor(content).find(key));
  }

  FakeHome home_;
};

const std::string defaults = canonical(
    R"({"assistantBackend":null,"assistantEnabled":false,"assistantTriggerWord":"computer",
        "aiCorrectionEnabled":false,"dictationHotkey":"rightOption","sttModel":null,"llmModel":null,
        "inputDeviceIndex":null,"ttsEnabled":true,"agentVoices":{}})");

TEST_F(CurrentSettingsTest, AMissingFileMeansTheDefaults) {
  EXPECT_EQ(writePrettyJSON(current()), defaults);
  std::filesystem::create_directories(home_.configurationFile("settings.json"));
  EXPECT_EQ(writePrettyJSON(current()), defaults) << "a directory in its place";
}

TEST_F(CurrentSettingsTest, UnreadableContentMeansTheDefaults) {
  for (const char* content : {"", "{", "[]", "5", "null", "\"x\"", "{}", "{\"ttsEnabled\":false,}", "\xFF",
                              "{\"ttsEnabled\":false,\"x\":\"\xFF\"}", "{\"unknown\":[1,{\"a\":null}],\"theme\":5}"}) {
    EXPECT_EQ(writePrettyJSON(settingsFor(content)), defaults) << content;
  }
}

TEST_F(CurrentSettingsTest, NullsAreAbsent) {
  EXPECT_EQ(writePrettyJSON(settingsFor(
                R"({"assistantBackend":null,"assistantEnabled":null,"assistantTrigger":null,"dictationHotkey":null,
                    "inputDevice":null,"contextMode":null,"llmModel":null,"sttModel":null,"ttsEnabled":null,
                    "agentVoices":null})")),
            defaults);
}

TEST_F(CurrentSettingsTest, EveryKeyIsReportedUnderItsName) {
  EXPECT_EQ(writePrettyJSON(settingsFor(
                R"({"assistantBackend":"cloud","assistantEnabled":true,"assistantTrigger":"hey","other":[1],
                    "dictationHotkey":{"name":"fn","more":5},"inputDevice":3,"contextMode":true,"llmModel":"big",
                    "sttModel":"small","ttsEnabled":false,"agentVoices":{"a":"x","b":"y"}})")),
            canonical(
                R"({"assistantBackend":"cloud","assistantEnabled":true,"assistantTriggerWord":"hey",
                    "aiCorrectionEnabled":true,"dictationHotkey":"fn","sttModel":"small","llmModel":"big",
                    "inputDeviceIndex":3,"ttsEnabled":false,"agentVoices":{"a":"x","b":"y"}})"));
}

TEST_F(CurrentSettingsTest, EmptyStringsAreValuesExceptTheBackends) {
  const std::string content = R"({"assistantBackend":"","assistantTrigger":"","llmModel":"","sttModel":"",
                                  "dictationHotkey":{"name":""}})";
  EXPECT_EQ(member("assistantBackend", content), "null");
  for (const char* key : {"assistantTriggerWord", "llmModel", "sttModel", "dictationHotkey"}) {
    EXPECT_EQ(member(key, content), "\"\"") << key;
  }
}

TEST_F(CurrentSettingsTest, InputDevicesAreSigned64BitIntegers) {
  for (const char* index : {"0", "-1", "9223372036854775807", "-9223372036854775808"}) {
    EXPECT_EQ(member("inputDeviceIndex", R"({"inputDevice":)" + std::string(index) + "}"), index);
  }
}

TEST_F(CurrentSettingsTest, OneWrongTypeResetsAllButTheHotkey) {
  const std::string others = R"("ttsEnabled":false,"contextMode":true,"sttModel":"s",)";
  for (const char* wrong : {R"("assistantBackend":5)",
                            R"("assistantEnabled":"true")",
                            R"("assistantEnabled":1)",
                            R"("assistantTrigger":true)",
                            R"("inputDevice":"0")",
                            R"("inputDevice":true)",
                            R"("inputDevice":9223372036854775808)",
                            R"("inputDevice":1.5)",
                            R"("contextMode":0)",
                            R"("llmModel":[])",
                            R"("sttModel":{})",
                            R"("ttsEnabled":"no")",
                            R"("agentVoices":[])",
                            R"("agentVoices":"heart2")",
                            R"("agentVoices":{"a":5})",
                            R"("agentVoices":{"a":"x","b":null})",
                            R"("dictationHotkey":5)",
                            R"("dictationHotkey":["fn"])",
                            R"("dictationHotkey":true)",
                            R"("dictationHotkey":{"name":5})"}) {
    EXPECT_EQ(writePrettyJSON(settingsFor("{" + others + wrong + "}")), defaults) << wrong;
  }
  EXPECT_EQ(member("dictationHotkey", R"({"dictationHotkey":{"name":"fn"},"ttsEnabled":"no"})"), "\"fn\"");
}

TEST_F(CurrentSettingsTest, AHotkeyOfAnOlderShapeIsReportedWhileTheRestIsReset) {
  const std::string content = R"({"dictationHotkey":"leftOption","ttsEnabled":false,"contextMode":true})";
  EXPECT_EQ(member("dictationHotkey", content), "\"leftOption\"");
  EXPECT_EQ(member("ttsEnabled", content), "true");
  EXPECT_EQ(member("aiCorrectionEnabled", content), "false");
  EXPECT_EQ(member("dictationHotkey", R"({"dictationHotkey":""})"), "\"\"");
}

TEST_F(CurrentSettingsTest, TheHotkeysNameComesBeforeItsRawValue) {
  const auto hotkey = [&](const std::string& binding) {
    return member("dictationHotkey", R"({"dictationHotkey":)" + binding + "}");
  };
  EXPECT_EQ(hotkey(R"({"rawValue":"fn"})"), "\"fn\"");
  EXPECT_EQ(hotkey(R"({"rawValue":"fn","name":"ctrl"})"), "\"ctrl\"");
  EXPECT_EQ(hotkey(R"({"rawValue":"fn","name":null})"), "\"fn\"");
  EXPECT_EQ(hotkey(R"({"rawValue":"fn","name":5})"), "\"fn\"");
  EXPECT_EQ(hotkey(R"({"rawValue":5})"), "\"rightOption\"");
  EXPECT_EQ(hotkey("{}"), "\"rightOption\"");
  EXPECT_EQ(member("ttsEnabled", R"({"dictationHotkey":{"rawValue":5},"ttsEnabled":false})"), "false")
      << "rawValue is no part of the strict record";
}

TEST_F(CurrentSettingsTest, TheVoicesOldNameIsReportedByItsNewOne) {
  EXPECT_EQ(
      canonical(member("agentVoices", R"({"agentVoices":{"a":"heart2","b":"Heart2","heart2":"x","c":"heart2 "}})")),
      canonical(R"({"a":"lumen","b":"Heart2","heart2":"x","c":"heart2 "})"));
}

TEST_F(CurrentSettingsTest, TheFileIsReadOnEveryCallAndNeverWritten) {
  EXPECT_EQ(member("ttsEnabled", R"({"ttsEnabled":false})"), "false");
  EXPECT_EQ(member("ttsEnabled", R"({"ttsEnabled":true})"), "true");
  EXPECT_EQ(readFile(home_.configurationFile("settings.json")), R"({"ttsEnabled":true})");
  std::filesystem::remove(home_.configurationFile("settings.json"));
  EXPECT_EQ(writePrettyJSON(current()), defaults);
  EXPECT_FALSE(std::filesystem::exists(home_.file(".config/orvane/settings.json")));
}

TEST_F(CurrentSettingsTest, AFIFOInItsPlaceDoesNotBlock) {
  ASSERT_EQ(mkfifo(home_.configurationFile("settings.json").c_str(), 0600), 0);
  EXPECT_EQ(writePrettyJSON(current()), defaults);
}

TEST_F(CurrentSettingsTest, DescribesItself) {
  EXPECT_EQ(CurrentSettingsTool::name, "current_settings");
  const std::string description = CurrentSettingsTool::description();
  EXPECT_TRUE(
      description.starts_with("Return an abridged snapshot of the user's current Orvane setup (assistant backend, "
                              "dictation hotkey, AI Correction "
                              "state, trigger word, input device, Voice Output enabled state, and your assigned voice "
                              "in `agentVoices` \xE2\x80\x94 "
                              "pass `agentVoices[<your CLI name>]` as the `voice` arg to `speak` so each agent sounds "
                              "distinct).\n\nIMPORTANT: "));
  EXPECT_TRUE(description.ends_with(docsPath("INDEX.md")));
  EXPECT_EQ(writeCompactJSON(CurrentSettingsTool::inputSchema()),
            R"({"type":"object","properties":{},"additionalProperties":false})");
}

}  // namespace
}  // namespace orvane::test
