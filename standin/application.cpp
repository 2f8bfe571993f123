#include "standin/application.h"

#include "standin/refusal.h"

namespace orvane::standin {

std::optional<Consent> consentNamed(std::string_view name) {
  if (name == "grant") return Consent::granted;
  if (name == "deny") return Consent::denied;
  if (name == "timeout") return Consent::unanswered;
  return std::nullopt;
}

Application::Application(const JSON::Object& world, Consent changes, Consent meetings)
    : changes_(changes), meetings_(meetings) {
  addSettingsMethods(table_, world);
  addVoiceMethods(table_, world);
  addAugmentMethods(table_, world);
  addMeetingsMethods(table_, world);
  addSlateMethods(table_, world);
  addComputerMethods(table_, world);
}

JSON Application::call(const std::string& method, const JSON::Object& arguments) {
  const std::lock_guard lock(mutex_);
  const auto found = table_.find(method);
  if (found == table_.end()) throw invalid("unknown method: " + method);
  ask(found->second.gate);
  return found->second.answer(Arguments(arguments));
}

std::vector<std::string> Application::methods() const {
  std::vector<std::string> names;
  for (const auto& [name, method] : table_) names.push_back(name);
  return names;
}

void Application::ask(Gate gate) const {
  if (gate == Gate::none) return;
  const Consent consent = gate == Gate::changes ? changes_ : meetings_;
  const std::string what = gate == Gate::changes ? "changes by agents" : "reading meetings";
  if (consent == Consent::denied) {
    throw Refusal(MCPMutationErrorCode::consentDenied, "The user did not allow " + what + ".");
  }
  if (consent == Consent::unanswered) {
    throw Refusal(MCPMutationErrorCode::consentPendingTimeout,
                  "The user has not yet answered the question whether to allow " + what + ".");
  }
}

}  // namespace orvane::standin
