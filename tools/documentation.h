// The parts of tool descriptions that point at the documentation which the desktop application installs. The files are
// never read here and need not exist. Each is made anew from the platform's answer of the moment.
#pragma once

#include <string>
#include <string_view>

namespace orvane {

/// The path of the documentation file `fileName`; that of the directory, with a final slash, for an empty name.
std::string docsPath(std::string_view fileName);

/// What ends the description of a tool with a documentation file of its own: a pointer to `fileName`.
std::string docPointer(std::string_view fileName);

/// What ends the descriptions of the tools that show the application's configuration: a warning not to edit its files,
/// and a pointer to the index of the documentation.
std::string configurationNotice();

}  // namespace orvane
