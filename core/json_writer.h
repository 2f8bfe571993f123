// Writing JSON text. Strings come out with only what JSON demands escaped; text that is not UTF-8 is never written.
#pragma once

#include <stdexcept>
#include <string>

#include "core/json.h"

namespace orvane {

/// Thrown when a value cannot be written as JSON text.
class JSONWriteError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// How a slash inside a string is written.
enum class Slashes {
  plain,    ///< as it is
  escaped,  ///< as \/
};

/// `value` on one line without white space, members in their order. Throws JSONWriteError if a string or key is not
/// valid UTF-8.
std::string writeCompactJSON(const JSON& value, Slashes slashes = Slashes::plain);

/// Appends what writeCompactJSON returns to `text`; on a throw `text` keeps what was written so far.
void appendCompactJSON(std::string& text, const JSON& value, Slashes slashes = Slashes::plain);
void appendCompactJSON(std::string& text, const JSON::Object& object, Slashes slashes = Slashes::plain);

/// `value` over several lines, indented by two blanks a level, keys sorted by their bytes, slashes plain. Throws
/// JSONWriteError if a string or key is not valid UTF-8.
std::string writePrettyJSON(const JSON& value);

/// Appends the compact JSON string whose content is writePrettyJSON(value), without making that text first. Throws
/// JSONWriteError as above; `text` then keeps what was written so far.
void appendPrettyJSONString(std::string& text, const JSON& value);

}  // namespace orvane
