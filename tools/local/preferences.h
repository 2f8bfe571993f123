// The user's preference notes in preferences.md: reading them, and remembering one more. Both report each call to the
// context audit log.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "core/json.h"

namespace orvane {

/// The longest note, in bytes of UTF-8 after trimming.
inline constexpr std::size_t maxNoteBytes = 1024;
/// The largest preferences file, in bytes.
inline constexpr std::size_t maxPreferencesBytes = 32768;

/// read_preferences: the whole file and its length in user-perceived characters.
struct ReadPreferencesTool {
  static constexpr std::string_view name = "read_preferences";
  static std::string description();
  static const JSON& inputSchema();
  static JSON call(const JSON::Object& arguments);
};

/// remember_preference: appends one note as a line. What it refuses it says in its result, under "error".
struct RememberPreferenceTool {
  static constexpr std::string_view name = "remember_preference";
  static std::string description();
  static const JSON& inputSchema();
  static JSON call(const JSON::Object& arguments);
};

}  // namespace orvane
