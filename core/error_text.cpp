#include "core/error_text.h"

#include <system_error>

namespace orvane {

std::string errorText(int errorNumber) {
  // The standard library's message is strerror's text, made safe for several threads.
  return std::generic_category().message(errorNumber) + " (errno " + std::to_string(errorNumber) + ")";
}

}  // namespace orvane
