#include "standin/text.h"

#include <algorithm>

namespace orvane::standin {

namespace {

// Whether `byte` goes on with a character that an earlier byte began.
bool continuesCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; }

std::size_t bytesOfCodePoints(std::string_view text, std::size_t count) {
  std::size_t bytes = 0;
  for (; count > 0 && bytes < text.size(); --count) {
    ++bytes;
    while (bytes < text.size() && continuesCharacter(text[bytes])) ++bytes;
  }
  return bytes;
}

}  // namespace

bool contains(const std::vector<std::string>& texts, std::string_view text) {
  return std::find(texts.begin(), texts.end(), text) != texts.end();
}

std::string lowercasedASCII(std::string_view text) {
  std::string lower(text);
  for (char& letter : lower) {
    if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
  }
  return lower;
}

bool containsIgnoringCase(std::string_view text, std::string_view part) {
  return lowercasedASCII(text).find(lowercasedASCII(part)) != std::string::npos;
}

std::size_t codePointCount(std::string_view text) {
  return static_cast<std::size_t>(
      std::count_if(text.begin(), text.end(), [](char byte) { return !continuesCharacter(byte); }));
}

std::string_view codePointSlice(std::string_view text, std::size_t offset, std::size_t limit) {
  text.remove_prefix(bytesOfCodePoints(text, offset));
  return text.substr(0, bytesOfCodePoints(text, limit));
}

}  // namespace orvane::standin
