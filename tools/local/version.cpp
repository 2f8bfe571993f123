#include "tools/local/version.h"

#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <memory>
#include <optional>
#include <utility>

#include "core/files.h"
#include "core/paths.h"
#include "core/text.h"
#include "tools/documentation.h"
#include "tools/schema.h"

namespace orvane {

namespace {

constexpr std::string_view unknownVersion = "0.0.0-dev";

// The program's own directory and five of its ancestors.
constexpr int searchedDirectories = 6;

struct FreeDeleter {
  void operator()(char* text) const { std::free(text); }
};
using MallocString = std::unique_ptr<char, FreeDeleter>;

// The absolute `path` with all symbolic links resolved, as far as it exists; what does not exist is kept as it stands.
std::string resolvedPath(const std::string& path) {
  // The system takes no longer path, so the end of one that is longer does not exist.
  std::size_t end = path.size() < PATH_MAX ? path.size() : path.rfind('/', PATH_MAX - 1);
  while (end != 0) {
    if (const MallocString resolved{realpath(path.substr(0, end).c_str(), nullptr)}) {
      return end == path.size() ? resolved.get() : joinPath(resolved.get(), path.substr(end + 1));
    }
    end = path.rfind('/', end - 1);
  }
  return path;
}

std::string absolutePath(const std::string& path) {
  if (path.starts_with('/')) return path;
  const MallocString workingDirectory{getcwd(nullptr, 0)};
  const std::string base = workingDirectory ? workingDirectory.get() : "/";
  return path.empty() ? base : joinPath(base, path);
}

std::optional<std::string> versionIn(const std::string& file) {
  const std::optional<std::string> text = readTextFile(file);
  if (!text.has_value()) return std::nullopt;
  const std::string_view version = trimBlanksAndNewlines(*text);
  if (version.empty()) return std::nullopt;
  return std::string(version);
}

std::string& programPathStorage() {
  static std::string path;
  return path;
}

}  // namespace

std::string findVersion(const std::string& programPath) {
  std::string directory = parentDirectory(resolvedPath(absolutePath(programPath)));
  if (auto version = versionIn(joinPath(parentDirectory(directory), "Resources/VERSION"))) return *std::move(version);
  for (int searched = 0; searched < searchedDirectories; ++searched) {
    if (auto version = versionIn(joinPath(directory, "VERSION"))) return *std::move(version);
    std::string parent = parentDirectory(directory);
    if (parent == directory) break;
    directory = std::move(parent);
  }
  return std::string(unknownVersion);
}

void setProgramPath(std::string programPath) { programPathStorage() = std::move(programPath); }

const std::string& applicationVersion() {
  static const std::string version = findVersion(programPathStorage());
  return version;
}

std::string OrvaneVersionTool::description() { return "Return the running Orvane version." + configurationNotice(); }

const JSON& OrvaneVersionTool::inputSchema() { return emptyInputSchema(); }

JSON OrvaneVersionTool::call(const JSON::Object&) { return JSON::Object{{"version", applicationVersion()}}; }

}  // namespace orvane
