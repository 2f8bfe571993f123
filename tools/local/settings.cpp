#include "tools/local/settings.h"

#include <cstdint>
#include <optional>
#include <utility>
#include <variant>

#include "core/files.h"
#include "core/json_reader.h"
#include "core/user_paths.h"
#include "tools/documentation.h"
#include "tools/schema.h"

namespace orvane {

namespace {

struct HotkeyBinding {
  std::optional<std::string> name;
};

// The ten keys of settings.json that this tool reports from. A missing key and a null leave a field absent.
struct PersistedSettings {
  std::optional<std::string> assistantBackend;
  std::optional<bool> assistantEnabled;
  std::optional<std::string> assistantTrigger;
  std::optional<HotkeyBinding> dictationHotkey;
  std::optional<std::int64_t> inputDevice;
  std::optional<bool> contextMode;
  std::optional<std::string> llmModel;
  std::optional<std::string> sttModel;
  std::optional<bool> ttsEnabled;
  std::optional<JSON::Object> agentVoices;  // values are strings
};

// Each reads one value strictly into `field`; false if it is of another type.
bool decode(const JSON& value, std::optional<std::string>& field) {
  if (value.asString() == nullptr) return false;
  field = *value.asString();
  return true;
}

bool decode(const JSON& value, std::optional<bool>& field) {
  if (value.asBool() == nullptr) return false;
  field = *value.asBool();
  return true;
}

bool decode(const JSON& value, std::optional<std::int64_t>& field) {
  field = value.asInteger();
  return field.has_value();
}

bool decode(const JSON& value, std::optional<JSON::Object>& field) {
  const JSON::Object* object = value.asObject();
  if (object == nullptr) return false;
  for (const JSONMember& member : *object) {
    if (member.value.asString() == nullptr) return false;
  }
  field = *object;
  return true;
}

bool decode(const JSON& value, std::optional<HotkeyBinding>& field);

template <class T>
bool decodeMember(const JSON::Object& object, std::string_view key, std::optional<T>& field) {
  const JSON* value = object.find(key);
  return value == nullptr || value->isNull() || decode(*value, field);
}

bool decode(const JSON& value, std::optional<HotkeyBinding>& field) {
  const JSON::Object* object = value.asObject();
  return object != nullptr && decodeMember(*object, "name", field.emplace().name);
}

// One value of the wrong type makes the whole record unreadable.
std::optional<PersistedSettings> decodeSettings(const JSON::Object& file) {
  PersistedSettings settings;
  const bool isDecoded =
      decodeMember(file, "assistantBackend", settings.assistantBackend) &&
      decodeMember(file, "assistantEnabled", settings.assistantEnabled) &&
      decodeMember(file, "assistantTrigger", settings.assistantTrigger) &&
      decodeMember(file, "dictationHotkey", settings.dictationHotkey) &&
      decodeMember(file, "inputDevice", settings.inputDevice) &&
      decodeMember(file, "contextMode", settings.contextMode) && decodeMember(file, "llmModel", settings.llmModel) &&
      decodeMember(file, "sttModel", settings.sttModel) && decodeMember(file, "ttsEnabled", settings.ttsEnabled) &&
      decodeMember(file, "agentVoices", settings.agentVoices);
  if (!isDecoded) return std::nullopt;
  return settings;
}

// The hotkey in any shape that a version of the application has stored, whatever the rest of the file is like.
std::optional<std::string> readHotkey(const JSON::Object& file) {
  const JSON* hotkey = file.find("dictationHotkey");
  if (hotkey == nullptr) return std::nullopt;
  if (const std::string* text = hotkey->asString()) return *text;
  const JSON::Object* binding = hotkey->asObject();
  if (binding == nullptr) return std::nullopt;
  for (const char* key : {"name", "rawValue"}) {
    const JSON* value = binding->find(key);
    if (value != nullptr && value->asString() != nullptr) return *value->asString();
  }
  return std::nullopt;
}

template <class T>
JSON valueOrNull(std::optional<T> value) {
  return value.has_value() ? JSON(*std::move(value)) : JSON();
}

JSON::Object reportedVoices(const JSON::Object& voices) {
  JSON::Object reported = voices;
  for (const JSONMember& member : voices) {
    // The voice has a new name; files still hold the old one.
    if (*member.value.asString() == "heart2") reported.set(member.key, "lumen");
  }
  return reported;
}

}  // namespace

JSON settingsSnapshot(std::string_view fileContent) {
  const JSON::Object file = readJSONObject(fileContent).value_or(JSON::Object());
  PersistedSettings settings = decodeSettings(file).value_or(PersistedSettings());
  if (settings.assistantBackend == "") settings.assistantBackend.reset();
  return JSON::Object{
      {"assistantBackend", valueOrNull(std::move(settings.assistantBackend))},
      {"assistantEnabled", settings.assistantEnabled.value_or(false)},
      {"assistantTriggerWord", std::move(settings.assistantTrigger).value_or("computer")},
      {"aiCorrectionEnabled", settings.contextMode.value_or(false)},
      {"dictationHotkey", readHotkey(file).value_or("rightOption")},
      {"sttModel", valueOrNull(std::move(settings.sttModel))},
      {"llmModel", valueOrNull(std::move(settings.llmModel))},
      {"inputDeviceIndex", valueOrNull(settings.inputDevice)},
      {"ttsEnabled", settings.ttsEnabled.value_or(true)},
      {"agentVoices", reportedVoices(settings.agentVoices.value_or(JSON::Object()))},
  };
}

std::string CurrentSettingsTool::description() {
  return "Return an abridged snapshot of the user's current Orvane setup (assistant backend, dictation hotkey, AI "
         "Correction state, trigger word, input device, Voice Output enabled state, and your assigned voice in "
         "`agentVoices` — pass `agentVoices[<your CLI name>]` as the `voice` arg to `speak` so each agent sounds "
         "distinct)." +
         configurationNotice();
}

const JSON& CurrentSettingsTool::inputSchema() { return emptyInputSchema(); }

JSON CurrentSettingsTool::call(const JSON::Object&) {
  const auto content = readWholeFile(configurationPath("settings.json"));
  const auto* bytes = std::get_if<std::string>(&content);
  return settingsSnapshot(bytes == nullptr ? std::string_view() : *bytes);
}

}  // namespace orvane
