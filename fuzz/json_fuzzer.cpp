// Reading and writing JSON: what was read and is written again, in any of the forms, is read as the same value.
#include <algorithm>
#include <string>
#include <string_view>

#include "core/json_reader.h"
#include "core/json_syntax.h"
#include "core/json_writer.h"
#include "core/utf8.h"
#include "fuzz/require.h"

namespace {

using orvane::JSON;
using orvane::JSONReadOutcome;
using orvane::fuzz::require;

// The value as the pretty form has it: members in ascending order of key.
JSON sorted(const JSON& value) {
  if (const JSON::Array* array = value.asArray()) {
    JSON::Array elements;
    for (const JSON& element : *array) elements.push_back(sorted(element));
    return elements;
  }
  const JSON::Object* object = value.asObject();
  if (object == nullptr) return value;
  std::vector<orvane::JSONMember> members;
  for (const auto& [key, member] : *object) members.push_back({key, sorted(member)});
  std::sort(members.begin(), members.end(), [](const auto& a, const auto& b) { return a.key < b.key; });
  return JSON::Object::fromMembers(std::move(members));
}

JSON readAgain(const std::string& text) {
  orvane::JSONReadResult result = orvane::readJSON(text);
  require(result.outcome == JSONReadOutcome::ok, "what was written can be read");
  return std::move(result.value);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const orvane::JSONReadResult result = orvane::readJSON(text);
  if (result.outcome != JSONReadOutcome::ok) {
    require(result.value.isNull(), "what is not read has no value");
    const bool mayHaveHugeExponent = text.find_first_of("eE") != std::string_view::npos;
    require(orvane::isJSONText(text) == (result.outcome == JSONReadOutcome::tooDeep) || mayHaveHugeExponent,
            "what is not read is no JSON, or too deep");
    return 0;
  }
  require(orvane::isJSONText(text), "what is read is JSON");
  require(orvane::isValidUTF8(text), "JSON text is UTF-8");
  const JSON& value = result.value;

  const std::string compact = orvane::writeCompactJSON(value);
  require(compact.find('\n') == std::string::npos, "the compact form is one line");
  require(readAgain(compact) == value, "the compact form keeps the value");

  const std::string escaped = orvane::writeCompactJSON(value, orvane::Slashes::escaped);
  for (std::size_t slash = escaped.find('/'); slash != std::string::npos; slash = escaped.find('/', slash + 1)) {
    require(slash > 0 && escaped[slash - 1] == '\\', "every slash is escaped");
  }
  require(readAgain(escaped) == value, "escaped slashes keep the value");

  const std::string pretty = orvane::writePrettyJSON(value);
  require(readAgain(pretty) == sorted(value), "the pretty form keeps the value, its keys sorted");

  std::string nested;
  orvane::appendPrettyJSONString(nested, value);
  require(nested.find('\n') == std::string::npos, "a string is one line");
  const JSON string = readAgain(nested);
  require(string.asString() != nullptr && *string.asString() == pretty, "the string holds the pretty form");
  return 0;
}
