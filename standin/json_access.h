// Short ways to read JSON that may hold anything.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "core/json.h"

namespace orvane::standin {

// Each gives the member `key` of `object`, or the fallback if it is missing or of another kind.
std::string textIn(const JSON::Object& object, std::string_view key, std::string_view fallback = "");
std::int64_t integerIn(const JSON::Object& object, std::string_view key, std::int64_t fallback = 0);
bool flagIn(const JSON::Object& object, std::string_view key, bool fallback = false);
const JSON::Array& listIn(const JSON::Object& object, std::string_view key);
const JSON::Object& objectIn(const JSON::Object& object, std::string_view key);
std::vector<std::string> textsIn(const JSON::Object& object, std::string_view key);

/// `value` as an object; an empty one if it is of another kind.
const JSON::Object& objectOf(const JSON& value);

/// The first object in `list` whose member `key` is the string `text`, or nullptr.
const JSON::Object* findIn(const JSON::Array& list, std::string_view key, std::string_view text);

/// The member `key` of each object in `list`; null where it has none.
JSON::Array column(const JSON::Array& list, std::string_view key);

/// `texts` as JSON strings.
JSON::Array toArray(const std::vector<std::string>& texts);

}  // namespace orvane::standin
