#include "standin/json_access.h"

namespace orvane::standin {

std::string textIn(const JSON::Object& object, std::string_view key, std::string_view fallback) {
  const JSON* value = object.find(key);
  const std::string* text = value == nullptr ? nullptr : value->asString();
  return text == nullptr ? std::string(fallback) : *text;
}

std::int64_t integerIn(const JSON::Object& object, std::string_view key, std::int64_t fallback) {
  const JSON* value = object.find(key);
  return value == nullptr ? fallback : value->asInteger().value_or(fallback);
}

bool flagIn(const JSON::Object& object, std::string_view key, bool fallback) {
  const JSON* value = object.find(key);
  const bool* flag = value == nullptr ? nullptr : value->asBool();
  return flag == nullptr ? fallback : *flag;
}

const JSON::Array& listIn(const JSON::Object& object, std::string_view key) {
  static const JSON::Array none;
  const JSON* value = object.find(key);
  const JSON::Array* list = value == nullptr ? nullptr : value->asArray();
  return list == nullptr ? none : *list;
}

const JSON::Object& objectIn(const JSON::Object& object, std::string_view key) {
  static const JSON nothing;
  const JSON* value = object.find(key);
  return objectOf(value == nullptr ? nothing : *value);
}

std::vector<std::string> textsIn(const JSON::Object& object, std::string_view key) {
  std::vector<std::string> texts;
  for (const JSON& value : listIn(object, key)) {
    if (value.asString() != nullptr) texts.push_back(*value.asString());
  }
  return texts;
}

const JSON::Object& objectOf(const JSON& value) {
  static const JSON::Object none;
  const JSON::Object* object = value.asObject();
  return object == nullptr ? none : *object;
}

const JSON::Object* findIn(const JSON::Array& list, std::string_view key, std::string_view text) {
  for (const JSON& value : list) {
    const JSON::Object* object = value.asObject();
    const JSON* member = object == nullptr ? nullptr : object->find(key);
    if (member != nullptr && member->asString() != nullptr && *member->asString() == text) return object;
  }
  return nullptr;
}

JSON::Array column(const JSON::Array& list, std::string_view key) {
  JSON::Array values;
  for (const JSON& value : list) {
    const JSON* member = objectOf(value).find(key);
    values.push_back(member == nullptr ? JSON() : *member);
  }
  return values;
}

JSON::Array toArray(const std::vector<std::string>& texts) { return {texts.begin(), texts.end()}; }

}  // namespace orvane::standin
