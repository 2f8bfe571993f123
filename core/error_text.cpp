#include "core/error_text.h"

#include <cstring>
#include <type_traits>

namespace orvane {

namespace {

// strerror_r comes in two forms: POSIX's fills the buffer, GNU's returns the text.
template <class Result>
const char* sentence(Result result, const char* buffer) {
  if constexpr (std::is_pointer_v<Result>) {
    return result;
  } else {
    return buffer;
  }
}

}  // namespace

std::string errorText(int errorNumber) {
  char buffer[256] = "";
  return std::string(sentence(strerror_r(errorNumber, buffer, sizeof buffer), buffer)) + " (errno " +
         std::to_string(errorNumber) + ")";
}

}  // namespace orvane
