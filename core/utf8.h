// UTF-8 (RFC 3629): encoded surrogates, overlong forms and values above U+10FFFF are not part of it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace orvane {

/// One character read from UTF-8 text.
struct DecodedCharacter {
  std::int32_t codePoint;  ///< -1 where the text is not valid UTF-8
  std::size_t length;      ///< bytes taken, 1 to 4; 0 where the text is not valid
};

/// The first character of `text`, which must not be empty.
DecodedCharacter decodeUTF8(std::string_view text);

/// Whether all of `text` is valid UTF-8.
bool isValidUTF8(std::string_view text);

/// Appends `codePoint`, a Unicode scalar value, to `text` as UTF-8.
void appendUTF8(std::string& text, std::int32_t codePoint);

}  // namespace orvane
