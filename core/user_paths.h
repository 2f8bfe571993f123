// Where the application and this server keep things in the user's home. Every function asks the platform afresh.
#pragma once

#include <string>
#include <string_view>

namespace orvane {

/// The directory of the application's configuration: ".config/orvane" under the home directory.
std::string configurationDirectory();

/// The file or directory `name` in configurationDirectory().
std::string configurationPath(std::string_view name);

/// The user's Application Support directory as the platform reports it, or "Library/Application Support" under the home
/// directory where it reports none.
std::string applicationSupportPath();

}  // namespace orvane
