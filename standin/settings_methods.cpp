// Insights, personas, input devices, assistant backend, trigger word, highlight-and-correct.
#include "standin/json_access.h"
#include "standin/methods.h"
#include "standin/refusal.h"
#include "standin/text.h"

namespace orvane::standin {

namespace {

class Settings {
 public:
  explicit Settings(const JSON::Object& world)
      : insights_(objectIn(world, "insights")),
        devices_(listIn(world, "inputDevices")),
        personas_(listIn(world, "personas")),
        activePersonas_(textsIn(world, "activePersonas")),
        backends_(textsIn(world, "backends")),
        backend_(textIn(world, "activeBackend")),
        triggerWord_(textIn(world, "triggerWord")) {}

  JSON getInsights(const Arguments&) { return insights_; }

  JSON listPersonas(const Arguments&) {
    return JSON::Object{{"personas", personas_}, {"active", toArray(activePersonas_)}};
  }

  JSON setActivePersona(const Arguments& arguments) {
    const std::string id = arguments.text("id");
    if (findIn(personas_, "id", id) == nullptr) {
      throw invalid("unknown persona: " + id, JSON::Object{{"validPersonas", column(personas_, "id")}});
    }
    activePersonas_ = {id};
    return JSON::Object{{"active", toArray(activePersonas_)}};
  }

  JSON listInputDevices(const Arguments&) { return JSON::Object{{"devices", devices_}, {"selection", selection()}}; }

  JSON setInputDevice(const Arguments& arguments) {
    const std::string name = arguments.text("name");
    if (name.empty() || name == "default") {
      deviceOverride_.reset();
    } else if (findIn(devices_, "name", name) != nullptr) {
      deviceOverride_ = name;
    } else {
      throw invalid("unknown input device: " + name, JSON::Object{{"visibleDevices", column(devices_, "name")}});
    }
    return selection();
  }

  JSON setAssistantBackend(const Arguments& arguments) {
    const std::string name = arguments.text("name");
    if (!contains(backends_, name)) {
      throw invalid("unknown assistant backend: " + name, JSON::Object{{"validBackends", toArray(backends_)}});
    }
    const std::string previous = std::exchange(backend_, name);
    return JSON::Object{{"backend", backend_}, {"previous", previous}};
  }

  JSON setAssistantTriggerWord(const Arguments& arguments) {
    const std::string phrase = arguments.text("phrase");
    if (phrase.find_first_not_of(" \t\r\n") == std::string::npos) throw invalid("the trigger word must not be empty");
    const std::string previous = std::exchange(triggerWord_, phrase);
    return JSON::Object{{"phrase", triggerWord_}, {"previous", previous}};
  }

  JSON setSelectionEditEnabled(const Arguments& arguments) {
    return JSON::Object{{"enabled", arguments.flag("enabled")}};
  }

 private:
  // What dictation listens to: the user's choice, else the system's default.
  JSON selection() const {
    if (deviceOverride_.has_value()) return JSON::Object{{"active", *deviceOverride_}, {"override", *deviceOverride_}};
    for (const JSON& device : devices_) {
      if (flagIn(objectOf(device), "isSystemDefault")) {
        return JSON::Object{{"active", textIn(objectOf(device), "name")}, {"override", nullptr}};
      }
    }
    return JSON::Object{{"active", nullptr}, {"override", nullptr}};
  }

  JSON::Object insights_;
  JSON::Array devices_;
  std::optional<std::string> deviceOverride_;
  JSON::Array personas_;
  std::vector<std::string> activePersonas_;
  std::vector<std::string> backends_;
  std::string backend_;
  std::string triggerWord_;
};

}  // namespace

void addSettingsMethods(MethodTable& table, const JSON::Object& world) {
  const auto settings = std::make_shared<Settings>(world);
  addMethod(table, settings, "get_insights", Gate::none, &Settings::getInsights);
  addMethod(table, settings, "list_personas", Gate::none, &Settings::listPersonas);
  addMethod(table, settings, "set_active_persona", Gate::changes, &Settings::setActivePersona);
  addMethod(table, settings, "list_input_devices", Gate::none, &Settings::listInputDevices);
  addMethod(table, settings, "set_input_device", Gate::changes, &Settings::setInputDevice);
  addMethod(table, settings, "set_assistant_backend", Gate::changes, &Settings::setAssistantBackend);
  addMethod(table, settings, "set_assistant_trigger_word", Gate::changes, &Settings::setAssistantTriggerWord);
  addMethod(table, settings, "set_selection_edit_enabled", Gate::changes, &Settings::setSelectionEditEnabled);
}

}  // namespace orvane::standin
