// JSON values from text and back, for tests that are easier to read with JSON as it looks on the wire.
#pragma once

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <string_view>

#include "core/json.h"
#include "core/json_reader.h"
#include "core/json_writer.h"

namespace orvane {

/// Lets a failed comparison show the values.
inline void PrintTo(const JSON& value, std::ostream* stream) { *stream << writeCompactJSON(value); }

namespace test {

/// The value of `text`; fails the test if it is not JSON.
inline JSON parsed(std::string_view text) {
  JSONReadResult result = readJSON(text);
  EXPECT_EQ(result.outcome, JSONReadOutcome::ok) << "not JSON: " << text.substr(0, 300);
  return std::move(result.value);
}

/// The object of `text`; fails the test if it is not one.
inline JSON::Object parsedObject(std::string_view text) {
  JSON value = parsed(text);
  JSON::Object* object = value.asObject();
  EXPECT_NE(object, nullptr) << "not an object: " << text.substr(0, 300);
  return object == nullptr ? JSON::Object() : std::move(*object);
}

/// The JSON of `text` in one form, whatever the order of its keys.
inline std::string canonical(std::string_view text) { return writePrettyJSON(parsed(text)); }

/// `levels` arrays, one in another, around `core`.
inline std::string nestedArrays(std::size_t levels, std::string_view core = {}) {
  return std::string(levels, '[').append(core).append(levels, ']');
}

}  // namespace test
}  // namespace orvane
