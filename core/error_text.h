// How an errno value is told to a person.
#pragma once

#include <string>

namespace orvane {

/// The system's sentence for `errorNumber` (strerror) followed by " (errno N)".
std::string errorText(int errorNumber);

}  // namespace orvane
