// Looking at text, with no more Unicode than the made-up data needs.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::standin {

/// Whether `texts` holds `text`.
bool contains(const std::vector<std::string>& texts, std::string_view text);

/// `text` with the letters A to Z in lower case; other letters stay as they are.
std::string lowercasedASCII(std::string_view text);

/// Whether `text` contains `part`, the case of A to Z aside.
bool containsIgnoringCase(std::string_view text, std::string_view part);

/// The number of Unicode characters (code points) of `text`, which is valid UTF-8.
std::size_t codePointCount(std::string_view text);

/// `text` without its first `offset` code points and at most `limit` code points of what follows.
std::string_view codePointSlice(std::string_view text, std::size_t offset, std::size_t limit);

}  // namespace orvane::standin
