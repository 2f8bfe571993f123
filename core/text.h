// Unicode rules for the text of the user's files: blanks, lines, case, user-perceived characters. All text is UTF-8;
// where it is not valid, each offending byte counts as a character of its own and is neither a blank nor a newline.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {

/// `text` without blanks at both ends: the tab and the characters of the Unicode category Zs.
std::string_view trimBlanks(std::string_view text);

/// `text` without blanks and newlines at both ends.
std::string_view trimBlanksAndNewlines(std::string_view text);

/// The lines of `text`, split at every LF, CR, VT, FF, U+0085, U+2028 and U+2029; a CR LF pair leaves an empty line.
/// The views point into `text`.
std::vector<std::string_view> splitLines(std::string_view text);

/// The pieces of `text` between occurrences of `separator`, empty ones included. The views point into `text`.
std::vector<std::string_view> splitAt(std::string_view text, std::string_view separator);

/// `text` in lower case, by the locale-independent mapping of each character (U+0130 becomes i and U+0307).
std::string lowercased(std::string_view text);

/// `text` with the first letter of each word in upper case and the rest in lower case. A word is a run of letters,
/// digits, marks and apostrophes.
std::string capitalized(std::string_view text);

/// The number of user-perceived characters: extended grapheme clusters (Unicode Standard Annex 29).
std::size_t characterCount(std::string_view text);

}  // namespace orvane
