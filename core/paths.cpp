#include "core/paths.h"

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

}  // namespace orvane
