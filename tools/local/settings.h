// The settings snapshot, answered from the application's settings.json.
#pragma once

#include <string>
#include <string_view>

#include "core/json.h"

namespace orvane {

/// What current_settings reports of a settings file that holds `fileContent`; all defaults if that is no JSON object.
JSON settingsSnapshot(std::string_view fileContent);

/// current_settings: an abridged picture of the user's setup. Reads the file on every call and never fails: what is
/// missing or malformed is reported as its default.
struct CurrentSettingsTool {
  static constexpr std::string_view name = "current_settings";
  static std::string description();
  static const JSON& inputSchema();
  static JSON call(const JSON::Object& arguments);
};

}  // namespace orvane
