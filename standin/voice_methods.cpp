// The voices and speaking. Nothing is heard: a queued line is only counted.
#include <map>

#include "standin/json_access.h"
#include "standin/methods.h"
#include "standin/refusal.h"
#include "standin/text.h"

namespace orvane::standin {

namespace {

class Voice {
 public:
  explicit Voice(const JSON::Object& world) : data_(objectIn(world, "voiceOutput")) {}

  JSON listVoices(const Arguments&) {
    return JSON::Object{{"backend", textIn(data_, "backend")},
                        {"voices", listIn(data_, "voices")},
                        {"activeVoice", textIn(data_, "activeVoice")}};
  }

  JSON speak(const Arguments& arguments) {
    const std::string text = arguments.text("text");
    const std::optional<std::string> asked = arguments.optionalText("voice");
    const std::optional<std::string> identifier = arguments.optionalText("identifier");
    const std::string agent = arguments.optionalText("_agent").value_or("agent");

    if (text.find_first_not_of(" \t\r\n") == std::string::npos) throw invalid("there is no text to speak");
    const auto length = static_cast<std::int64_t>(codePointCount(text));
    const std::int64_t limit = integerIn(data_, "maxCharacters", 2000);
    if (length > limit) {
      throw invalid(
          "text is too long: " + std::to_string(length) + " characters, at most " + std::to_string(limit) + " per call",
          JSON::Object{{"characters", length}, {"maxCharacters", limit}});
    }
    if (asked.has_value() && findIn(listIn(data_, "voices"), "id", *asked) == nullptr) {
      throw invalid("unknown voice: " + *asked, JSON::Object{{"validVoices", column(listIn(data_, "voices"), "id")}});
    }
    if (!flagIn(data_, "enabled", true)) {
      return JSON::Object{{"queued", false}, {"warning", "Voice Output is disabled in the Dashboard."}};
    }

    const std::string configured = textIn(objectIn(data_, "voiceByAgent"), agent, textIn(data_, "activeVoice"));
    const std::string voice = asked.value_or(configured);
    const std::string session = identifier.value_or(agent + " / " + voice);
    return JSON::Object{{"queued", true}, {"voice", voice}, {"session", session}, {"line", ++linesOfSession_[session]}};
  }

 private:
  JSON::Object data_;
  std::map<std::string, std::int64_t> linesOfSession_;
};

}  // namespace

void addVoiceMethods(MethodTable& table, const JSON::Object& world) {
  const auto voice = std::make_shared<Voice>(world);
  addMethod(table, voice, "list_tts_voices", Gate::none, &Voice::listVoices);
  addMethod(table, voice, "speak", Gate::none, &Voice::speak);
}

}  // namespace orvane::standin
