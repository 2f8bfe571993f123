#include "core/error_text.h"

#include <cstring>

namespace orvane {

namespace {

// strerror_r comes in two forms: POSIX's fills the buffer, GNU's returns the text.
[[maybe_unused]] const char* sentence(int, const char* buffer) { return buffer; }
[[maybe_unused]] const char* sentence(const char* text, const char*) { return text; }

}  // namespace

std::string errorText(int errorNumber) {
  char buffer[256] = "";
  return std::string(sentence(strerror_r(errorNumber, buffer, sizeof buffer), buffer)) + " (errno " +
         std::to_string(errorNumber) + ")";
}

}  // namespace orvane
