// The settings file: whatever it holds, the snapshot has its ten keys, each of its own type.
#include <string_view>

#include "core/json_writer.h"
#include "fuzz/require.h"
#include "tools/local/settings.h"

namespace {

using orvane::JSON;

bool isText(const JSON& value) { return value.asString() != nullptr; }
bool isTextOrNull(const JSON& value) { return value.isNull() || isText(value); }
bool isBool(const JSON& value) { return value.asBool() != nullptr; }
bool isIntegerOrNull(const JSON& value) { return value.isNull() || value.asInteger().has_value(); }
bool isTextMap(const JSON& value) {
  if (value.asObject() == nullptr) return false;
  for (const auto& [key, member] : *value.asObject()) {
    if (!isText(member) || *member.asString() == "heart2") return false;
  }
  return true;
}

struct Field {
  const char* key;
  bool (*fits)(const JSON&);
};

constexpr Field fields[] = {
    {"assistantBackend", isTextOrNull}, {"assistantEnabled", isBool},          {"assistantTriggerWord", isText},
    {"aiCorrectionEnabled", isBool},    {"dictationHotkey", isText},           {"sttModel", isTextOrNull},
    {"llmModel", isTextOrNull},         {"inputDeviceIndex", isIntegerOrNull}, {"ttsEnabled", isBool},
    {"agentVoices", isTextMap},
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  using orvane::fuzz::require;
  const JSON snapshot = orvane::settingsSnapshot(std::string_view(reinterpret_cast<const char*>(data), size));
  const JSON::Object* object = snapshot.asObject();
  require(object != nullptr && object->size() == std::size(fields), "the snapshot has ten keys");
  for (const Field& field : fields) {
    const JSON* value = object->find(field.key);
    require(value != nullptr && field.fits(*value), field.key);
  }
  orvane::writePrettyJSON(snapshot);  // throws if it holds anything but text
  return 0;
}
