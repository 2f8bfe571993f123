// The world that the stand-in pretends to see (devices, voices, meetings, applications ...), kept as data in a JSON
// file, and short ways to read such data.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/json.h"

namespace orvane::standin {

/// The world file that comes with the stand-in.
std::string defaultWorldPath();

/// The whole content of the file at `path`. Throws std::runtime_error if it cannot be read.
std::string readWholeFile(const std::string& path);

/// The JSON object in the file at `path`. Throws std::runtime_error, naming the path, if it cannot be read or is none.
JSON::Object readObjectFile(const std::string& path);

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

/// Whether `texts` holds `text`.
bool contains(const std::vector<std::string>& texts, std::string_view text);

/// `text` with the letters A to Z in lower case; other letters stay as they are.
std::string lowercasedASCII(std::string_view text);

/// Whether `text` contains `part`, the case of A to Z aside.
bool containsIgnoringCase(std::string_view text, std::string_view part);

/// The number of Unicode characters (code points) of `text`, which is valid UTF-8.
std::size_t codePointCount(std::string_view text);

/// `text` without its first `offset` code points and at most `limit` code points of what follows.
std::string_view codePointSlice(std::string_view text, std::size_t offset, std::size_t limit);

}  // namespace orvane::standin
