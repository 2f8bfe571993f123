// Paths as text.
#pragma once

#include <string>
#include <string_view>

namespace orvane {

/// `directory` and `name` with one slash between.
std::string joinPath(std::string_view directory, std::string_view name);

/// `path` less its last component: "/a" and "/" give "/", "a" gives "".
std::string parentDirectory(std::string_view path);

}  // namespace orvane
