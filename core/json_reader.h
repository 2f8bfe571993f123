// Reading JSON text (RFC 8259, strictly: no comments, no trailing commas, valid UTF-8, no lone surrogates).
#pragma once

#include <string_view>

#include "core/json.h"

namespace orvane {

/// The deepest nesting of arrays and objects that readJSON follows. Deep enough for any real document, and shallow
/// enough that no later walk over a value can exhaust the stack.
inline constexpr std::size_t maxReadNesting = 512;

/// What reading came to.
enum class JSONReadOutcome {
  ok,       ///< the text is one JSON value
  invalid,  ///< the text is not JSON
  tooDeep,  ///< the text is one JSON value, but nests deeper than maxReadNesting
};

struct JSONReadResult {
  JSONReadOutcome outcome;
  JSON value;  ///< null unless the outcome is ok
};

/// Reads `text` as one JSON value, surrounding white space allowed. Never throws for bad text. A number with an
/// exponent of more than about two thousand million, either way, is invalid.
JSONReadResult readJSON(std::string_view text);

/// Reads `text` as one JSON object; nothing if it is anything else.
std::optional<JSON::Object> readJSONObject(std::string_view text);

}  // namespace orvane
