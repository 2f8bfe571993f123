#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "core/text.h"
#include "core/utf8.h"
#include "tests/property/generators.h"

namespace orvane::test {
namespace {

std::string joined(const std::vector<std::string_view>& pieces, std::string_view separator) {
  std::string text;
  for (std::size_t index = 0; index < pieces.size(); ++index) {
    if (index > 0) text += separator;
    text += pieces[index];
  }
  return text;
}

RC_GTEST_PROP(TextProperty, TrimmingTwiceIsTrimmingOnce, ()) {
  const std::string text = *troublesomeText();
  RC_ASSERT(trimBlanks(trimBlanks(text)) == trimBlanks(text));
  RC_ASSERT(trimBlanksAndNewlines(trimBlanksAndNewlines(text)) == trimBlanksAndNewlines(text));
}

RC_GTEST_PROP(TextProperty, TrimmingTakesOnlyBlanksOffTheEnds, ()) {
  const std::string text = *troublesomeText();
  const std::string_view trimmed = trimBlanks(text);
  const auto start = static_cast<std::size_t>(trimmed.data() - text.data());
  RC_ASSERT(start + trimmed.size() <= text.size());
  RC_ASSERT(trimBlanks(std::string_view(text).substr(0, start)).empty());
  RC_ASSERT(trimBlanks(std::string_view(text).substr(start + trimmed.size())).empty());
}

RC_GTEST_PROP(TextProperty, BlanksAroundTextDoNotMatterToTrimming, ()) {
  const std::string text = *troublesomeText();
  RC_ASSERT(trimBlanks(" \u3000" + text + "\u2003\t") == trimBlanks(text));
  RC_ASSERT(trimBlanksAndNewlines("\n\u2028" + text + "\u0085 ") == trimBlanksAndNewlines(text));
}

RC_GTEST_PROP(TextProperty, ValidTextStaysValid, ()) {
  const std::string text = *anyText();
  RC_ASSERT(isValidUTF8(text));
  RC_ASSERT(isValidUTF8(trimBlanks(text)));
  RC_ASSERT(isValidUTF8(trimBlanksAndNewlines(text)));
  RC_ASSERT(isValidUTF8(lowercased(text)));
  RC_ASSERT(isValidUTF8(capitalized(text)));
  for (const std::string_view line : splitLines(text)) RC_ASSERT(isValidUTF8(line));
}

RC_GTEST_PROP(TextProperty, LinesHoldNoNewlines, ()) {
  const std::string text = *troublesomeText();
  std::size_t bytes = 0;
  for (const std::string_view line : splitLines(text)) {
    RC_ASSERT(splitLines(line).size() == 1U);
    bytes += line.size();
  }
  RC_ASSERT(bytes <= text.size());
}

RC_GTEST_PROP(TextProperty, LinesJoinedAgainSplitAlike, ()) {
  const std::string text = *troublesomeText();
  const std::vector<std::string_view> lines = splitLines(text);
  const std::string rejoined = joined(lines, "\u2028");
  RC_ASSERT(splitLines(rejoined) == lines);
}

RC_GTEST_PROP(TextProperty, PiecesJoinedAgainAreTheText, ()) {
  const std::string text = *textOf({"a", "-", ">", "->", ",", " "});
  for (const std::string separator : {",", "->"}) {
    const std::vector<std::string_view> pieces = splitAt(text, separator);
    RC_ASSERT(joined(pieces, separator) == text);
    for (const std::string_view piece : pieces) RC_ASSERT(piece.find(separator) == std::string_view::npos);
  }
}

RC_GTEST_PROP(TextProperty, LowerCasingAsciiTwiceIsLowerCasingOnce, ()) {
  const std::string text = *rc::gen::container<std::string>(rc::gen::inRange<char>(0, 127));
  const std::string lower = lowercased(text);
  RC_ASSERT(lower.size() == text.size());
  RC_ASSERT(lowercased(lower) == lower);
  RC_ASSERT(std::none_of(lower.begin(), lower.end(), [](char c) { return c >= 'A' && c <= 'Z'; }));
}

RC_GTEST_PROP(TextProperty, CapitalizingDoesNotChangeTheLettersOfAscii, ()) {
  const std::string text = *rc::gen::container<std::string>(rc::gen::inRange<char>(0, 127));
  RC_ASSERT(lowercased(capitalized(text)) == lowercased(text));
  RC_ASSERT(capitalized(capitalized(text)) == capitalized(text));
}

RC_GTEST_PROP(TextProperty, ThereAreNoMoreCharactersThanBytes, ()) {
  const std::string text = *troublesomeText();
  const std::size_t count = characterCount(text);
  RC_ASSERT(count <= text.size());
  RC_ASSERT((count == 0U) == text.empty());
}

RC_GTEST_PROP(TextProperty, CharactersOnTwoSidesOfALineFeedAddUp, ()) {
  const std::string before = *troublesomeText();
  const std::string after = *troublesomeText();
  RC_PRE(!before.ends_with('\r'));
  RC_ASSERT(characterCount(before + "\n" + after) == characterCount(before) + 1 + characterCount(after));
}

}  // namespace
}  // namespace orvane::test
