// The application's version, found from the path of the running program.
#pragma once

#include <string>
#include <string_view>

#include "core/json.h"

namespace orvane {

/// The version of the application bundle (or source tree) that holds the program at `programPath`: a path as it stands
/// in argv[0], relative ones meant from the working directory, symbolic links resolved. Looks into
/// Contents/Resources/VERSION of the bundle, then into VERSION in the program's directory and its five nearest
/// ancestors; "0.0.0-dev" if none of them holds text. Never fails.
std::string findVersion(const std::string& programPath);

/// Keeps argv[0] for applicationVersion. For start-up.
void setProgramPath(std::string programPath);

/// findVersion of the program path, computed on first use and kept for the life of the process.
const std::string& applicationVersion();

/// orvane_version: the version of the application.
struct OrvaneVersionTool {
  static constexpr std::string_view name = "orvane_version";
  static std::string description();
  static const JSON& inputSchema();
  static JSON call(const JSON::Object& arguments);
};

}  // namespace orvane
