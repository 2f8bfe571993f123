#include "core/user_paths.h"

#include "core/paths.h"
#include "platform/platform.h"

namespace orvane {

std::string configurationDirectory() { return joinPath(platform::homeDirectory(), ".config/orvane"); }

std::string configurationPath(std::string_view name) { return joinPath(configurationDirectory(), name); }

std::string applicationSupportPath() {
  if (std::optional<std::string> directory = platform::applicationSupportDirectory()) return *std::move(directory);
  return joinPath(platform::homeDirectory(), "Library/Application Support");
}

}  // namespace orvane
