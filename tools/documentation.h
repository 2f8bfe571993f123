// The parts of tool descriptions that point at the documentation which the desktop application installs. The files are
// never read here and need not exist.
#pragma once

#include <string>
#include <string_view>

namespace orvane {

/// The documentation directory as the platform gives it at this moment, with a final slash. One look serves a request.
std::string docsDirectory();

/// The path of the documentation file `fileName`, as the platform gives it at this moment.
std::string docsPath(std::string_view fileName);

/// What ends the description of a tool with a documentation file of its own: a pointer to `fileName` in
/// `docsDirectory`.
std::string docPointer(std::string_view docsDirectory, std::string_view fileName);

/// What ends the descriptions of the tools that show the application's configuration: a warning not to edit its files,
/// and a pointer to the index in `docsDirectory`.
std::string configurationNotice(std::string_view docsDirectory);

}  // namespace orvane
