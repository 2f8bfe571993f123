#include "core/user_paths.h"

#include "platform/platform.h"

namespace orvane {

std::string joinPath(std::string_view directory, std::string_view name) {
  std::string path(directory);
  if (path.empty() || path.back() != '/') path += '/';
  return path.append(name);
}

std::string parentDirectory(std::string_view path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string_view::npos) return {};
  return std::string(slash == 0 ? "/" : path.substr(0, slash));
}

std::string configurationDirectory() { return joinPath(platform::homeDirectory(), ".config/orvane"); }

std::string configurationPath(std::string_view name) { return joinPath(configurationDirectory(), name); }

std::string applicationSupportPath() {
  if (std::optional<std::string> directory = platform::applicationSupportDirectory()) return *std::move(directory);
  return joinPath(platform::homeDirectory(), "Library/Application Support");
}

}  // namespace orvane
