#include "core/utf8.h"

#include <utf8proc.h>

#include <cstring>

namespace orvane {

DecodedCharacter decodeUTF8(std::string_view text) {
  utf8proc_int32_t codePoint = -1;
  const utf8proc_ssize_t length = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                                                   static_cast<utf8proc_ssize_t>(text.size()), &codePoint);
  if (length <= 0) return {-1, 0};
  return {codePoint, static_cast<std::size_t>(length)};
}

bool isValidUTF8(std::string_view text) {
  while (!text.empty()) {
    // Most text is ASCII: eight bytes at a time are seen to be.
    std::uint64_t word = 0;
    while (text.size() >= sizeof word) {
      std::memcpy(&word, text.data(), sizeof word);
      if ((word & 0x8080808080808080U) != 0) break;
      text.remove_prefix(sizeof word);
    }
    if (text.empty()) break;
    if (static_cast<unsigned char>(text.front()) < 0x80) {
      text.remove_prefix(1);
      continue;
    }
    const DecodedCharacter character = decodeUTF8(text);
    if (character.length == 0) return false;
    text.remove_prefix(character.length);
  }
  return true;
}

void appendUTF8(std::string& text, std::int32_t codePoint) {
  utf8proc_uint8_t bytes[4];
  const utf8proc_ssize_t length = utf8proc_encode_char(codePoint, bytes);
  text.append(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(length));
}

}  // namespace orvane
