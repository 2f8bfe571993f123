#include "standin/world.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "core/json_reader.h"

namespace orvane::standin {

namespace {

// Whether `byte` goes on with a character that an earlier byte began.
bool continuesCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; }

std::size_t bytesOfCodePoints(std::string_view text, std::size_t count) {
  std::size_t bytes = 0;
  for (; count > 0 && bytes < text.size(); --count) {
    ++bytes;
    while (bytes < text.size() && continuesCharacter(text[bytes])) ++bytes;
  }
  return bytes;
}

}  // namespace

std::string defaultWorldPath() { return ORVANE_STANDIN_WORLD; }

std::string readWholeFile(const std::string& path) {
  std::ifstream stream(path, std::ios::binary);
  std::string content{std::istreambuf_iterator<char>(stream), {}};
  if (!stream.is_open() || stream.bad()) throw std::runtime_error("cannot read " + path);
  return content;
}

JSON::Object readObjectFile(const std::string& path) {
  std::optional<JSON::Object> object = readJSONObject(readWholeFile(path));
  if (!object.has_value()) throw std::runtime_error(path + " is not a JSON object");
  return *std::move(object);
}

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

bool contains(const std::vector<std::string>& texts, std::string_view text) {
  return std::find(texts.begin(), texts.end(), text) != texts.end();
}

std::string lowercasedASCII(std::string_view text) {
  std::string lower(text);
  for (char& letter : lower) {
    if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
  }
  return lower;
}

bool containsIgnoringCase(std::string_view text, std::string_view part) {
  return lowercasedASCII(text).find(lowercasedASCII(part)) != std::string::npos;
}

std::size_t codePointCount(std::string_view text) {
  return static_cast<std::size_t>(
      std::count_if(text.begin(), text.end(), [](char byte) { return !continuesCharacter(byte); }));
}

std::string_view codePointSlice(std::string_view text, std::size_t offset, std::size_t limit) {
  text.remove_prefix(bytesOfCodePoints(text, offset));
  return text.substr(0, bytesOfCodePoints(text, limit));
}

}  // namespace orvane::standin
