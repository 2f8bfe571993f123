#include "core/text.h"

#include <utf8proc.h>

#include <algorithm>

#include "core/utf8.h"

namespace orvane {

namespace {

/// The first character of `text`, which must not be empty; an offending byte is code point -1, one byte long.
DecodedCharacter firstCharacter(std::string_view text) {
  const DecodedCharacter character = decodeUTF8(text);
  return character.length == 0 ? DecodedCharacter{-1, 1} : character;
}

/// The last character of `text`, likewise.
DecodedCharacter lastCharacter(std::string_view text) {
  for (std::size_t length = 1; length <= std::min<std::size_t>(text.size(), 4); ++length) {
    const std::string_view tail = text.substr(text.size() - length);
    const bool isContinuation = (static_cast<unsigned char>(tail.front()) & 0xC0) == 0x80;
    if (isContinuation) continue;
    const DecodedCharacter character = decodeUTF8(tail);
    if (character.length == length) return character;
    break;
  }
  return {-1, 1};
}

bool isBlank(std::int32_t codePoint) {
  return codePoint == '\t' || utf8proc_category(codePoint) == UTF8PROC_CATEGORY_ZS;
}

bool isNewline(std::int32_t codePoint) {
  return (codePoint >= '\n' && codePoint <= '\r') || codePoint == 0x85 || codePoint == 0x2028 || codePoint == 0x2029;
}

bool isBlankOrNewline(std::int32_t codePoint) { return isBlank(codePoint) || isNewline(codePoint); }

std::string_view trim(std::string_view text, bool (*isTrimmed)(std::int32_t)) {
  while (!text.empty()) {
    const DecodedCharacter first = firstCharacter(text);
    if (!isTrimmed(first.codePoint)) break;
    text.remove_prefix(first.length);
  }
  while (!text.empty()) {
    const DecodedCharacter last = lastCharacter(text);
    if (!isTrimmed(last.codePoint)) break;
    text.remove_suffix(last.length);
  }
  return text;
}

void appendLowercased(std::string& text, std::int32_t codePoint) {
  // The one character whose lower case is two: capital I with a dot above.
  if (codePoint == 0x130) {
    text += "i\u0307";
  } else {
    appendUTF8(text, utf8proc_tolower(codePoint));
  }
}

bool isLetter(std::int32_t codePoint) {
  const utf8proc_category_t category = utf8proc_category(codePoint);
  return category >= UTF8PROC_CATEGORY_LU && category <= UTF8PROC_CATEGORY_LO;
}

bool isWordCharacter(std::int32_t codePoint) {
  const utf8proc_category_t category = utf8proc_category(codePoint);
  const bool isMark = category >= UTF8PROC_CATEGORY_MN && category <= UTF8PROC_CATEGORY_ME;
  return isLetter(codePoint) || isMark || category == UTF8PROC_CATEGORY_ND || codePoint == '\'' || codePoint == 0x2019;
}

}  // namespace

std::string_view trimBlanks(std::string_view text) { return trim(text, isBlank); }

std::string_view trimBlanksAndNewlines(std::string_view text) { return trim(text, isBlankOrNewline); }

std::vector<std::string_view> splitLines(std::string_view text) {
  std::vector<std::string_view> lines;
  std::size_t start = 0;
  std::size_t position = 0;
  while (position < text.size()) {
    const DecodedCharacter character = firstCharacter(text.substr(position));
    if (isNewline(character.codePoint)) {
      lines.push_back(text.substr(start, position - start));
      start = position + character.length;
    }
    position += character.length;
  }
  lines.push_back(text.substr(start));
  return lines;
}

std::vector<std::string_view> splitAt(std::string_view text, std::string_view separator) {
  std::vector<std::string_view> pieces;
  std::size_t start = 0;
  for (std::size_t found; (found = text.find(separator, start)) != std::string_view::npos;) {
    pieces.push_back(text.substr(start, found - start));
    start = found + separator.size();
  }
  pieces.push_back(text.substr(start));
  return pieces;
}

std::string lowercased(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  while (!text.empty()) {
    const DecodedCharacter character = firstCharacter(text);
    if (character.codePoint < 0) {
      result += text.front();
    } else {
      appendLowercased(result, character.codePoint);
    }
    text.remove_prefix(character.length);
  }
  return result;
}

std::string capitalized(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  bool isAfterFirstLetter = false;
  while (!text.empty()) {
    const DecodedCharacter character = firstCharacter(text);
    if (character.codePoint < 0 || !isWordCharacter(character.codePoint)) {
      isAfterFirstLetter = false;
      result.append(text.substr(0, character.length));
    } else if (!isAfterFirstLetter && isLetter(character.codePoint)) {
      isAfterFirstLetter = true;
      // Title case differs from upper case only where a word of mixed case asks for it: the digraphs as U+01C6, and
      // Georgian, whose capitals never begin a word.
      appendUTF8(result, utf8proc_totitle(character.codePoint));
    } else {
      appendLowercased(result, character.codePoint);
    }
    text.remove_prefix(character.length);
  }
  return result;
}

std::size_t characterCount(std::string_view text) {
  std::size_t count = 0;
  // The state learns the first character only by a call of its own: without one, the third flag letter of a text that
  // begins with three would join the first two. A control character before it lets it begin a cluster.
  std::int32_t previous = '\n';
  utf8proc_int32_t state = 0;
  while (!text.empty()) {
    const DecodedCharacter character = firstCharacter(text);
    // U+0000 joins nothing on either side, as becomes an offending byte.
    const std::int32_t codePoint = std::max(character.codePoint, 0);
    if (utf8proc_grapheme_break_stateful(previous, codePoint, &state)) ++count;
    previous = codePoint;
    text.remove_prefix(character.length);
  }
  return count;
}

}  // namespace orvane
