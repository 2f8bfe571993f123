// The stand-in's idea of the application: it looks a method up, asks for consent where the method needs it, and runs it
// on the state that all methods share. One call at a time.
#pragma once

#include <mutex>

#include "standin/methods.h"

namespace orvane::standin {

/// What the user answers when asked for consent.
enum class Consent {
  granted,
  denied,
  unanswered,  ///< the question goes unanswered until it times out; the stand-in does not really wait
};

/// The consent named "grant", "deny" or "timeout", if there is one of that name.
std::optional<Consent> consentNamed(std::string_view name);

class Application {
 public:
  /// Starts from what `world` describes. Throws std::runtime_error if it cannot be understood.
  explicit Application(const JSON::Object& world, Consent changes = Consent::granted,
                       Consent meetings = Consent::granted);

  /// The result of `method`, or a Refusal. May be called from several threads.
  JSON call(const std::string& method, const JSON::Object& arguments);

  /// The methods served, in alphabetical order.
  std::vector<std::string> methods() const;

 private:
  void ask(Gate gate) const;

  MethodTable table_;
  Consent changes_;
  Consent meetings_;
  std::mutex mutex_;
};

}  // namespace orvane::standin
