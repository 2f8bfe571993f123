#include "standin/arguments.h"

#include <algorithm>
#include <limits>

#include "standin/refusal.h"

namespace orvane::standin {

namespace {

[[noreturn]] void refuseKind(std::string_view key, std::string_view kind) {
  throw invalid("\"" + std::string(key) + "\" must be " + std::string(kind), JSON::Object{{"argument", key}});
}

std::string textOf(std::string_view key, const JSON& value) {
  if (value.asString() == nullptr) refuseKind(key, "a string");
  return *value.asString();
}

bool flagOf(std::string_view key, const JSON& value) {
  if (value.asBool() == nullptr) refuseKind(key, "a boolean");
  return *value.asBool();
}

std::int64_t integerOf(std::string_view key, const JSON& value) {
  if (const std::optional<std::int64_t> integer = value.asInteger()) return *integer;
  const JSON::Number* number = value.asNumber();
  if (number == nullptr || number->text.find_first_of(".eE") != std::string::npos) refuseKind(key, "an integer");
  // Digits only, yet beyond 64 bits: as far out as can be told.
  return number->text.front() == '-' ? std::numeric_limits<std::int64_t>::min()
                                     : std::numeric_limits<std::int64_t>::max();
}

std::string choiceOf(std::string_view key, std::string text, std::initializer_list<std::string_view> allowed) {
  if (std::find(allowed.begin(), allowed.end(), text) != allowed.end()) return text;
  throw invalid("\"" + std::string(key) + "\" has an unknown value: " + text,
                JSON::Object{{"argument", key}, {"allowed", JSON::Array(allowed.begin(), allowed.end())}});
}

}  // namespace

const JSON& Arguments::required(std::string_view key) const {
  const JSON* value = values_.find(key);
  if (value == nullptr) {
    throw invalid("missing required argument \"" + std::string(key) + "\"", JSON::Object{{"argument", key}});
  }
  return *value;
}

std::string Arguments::text(std::string_view key) const { return textOf(key, required(key)); }

std::optional<std::string> Arguments::optionalText(std::string_view key) const {
  if (!has(key)) return std::nullopt;
  return text(key);
}

bool Arguments::flag(std::string_view key) const { return flagOf(key, required(key)); }

std::optional<bool> Arguments::optionalFlag(std::string_view key) const {
  if (!has(key)) return std::nullopt;
  return flag(key);
}

std::int64_t Arguments::integer(std::string_view key, std::int64_t fallback, std::int64_t lowest,
                                std::int64_t highest) const {
  return has(key) ? std::clamp(integerOf(key, required(key)), lowest, highest) : fallback;
}

std::string Arguments::choice(std::string_view key, std::initializer_list<std::string_view> allowed) const {
  return choiceOf(key, text(key), allowed);
}

std::optional<std::string> Arguments::optionalChoice(std::string_view key,
                                                     std::initializer_list<std::string_view> allowed) const {
  if (!has(key)) return std::nullopt;
  return choice(key, allowed);
}

std::vector<std::string> Arguments::texts(std::string_view key) const {
  std::vector<std::string> texts;
  if (!has(key)) return texts;
  if (required(key).asArray() == nullptr) refuseKind(key, "an array of strings");
  for (const JSON& value : *required(key).asArray()) texts.push_back(textOf(key, value));
  return texts;
}

}  // namespace orvane::standin
