// Whether a text is JSON, whatever its depth, where its value is of no interest.
#pragma once

#include <string_view>

namespace orvane {

/// Whether `text` is one JSON value by the rules of readJSON, which it may nest deeper than that follows: nothing here
/// recurses, and an open array or object costs a bit. Unlike there, an exponent may have any size.
bool isJSONText(std::string_view text);

}  // namespace orvane
