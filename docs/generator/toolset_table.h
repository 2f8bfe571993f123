// The table of README.md that tells how many tools each choice of toolsets offers and how large their listing is.
#pragma once

#include <string>

namespace orvane::docs {

/// The table, in Markdown. Asks the platform for the documentation directory, whose path is in every description.
std::string toolsetTable();

}  // namespace orvane::docs
