// characterCount against the Unicode consortium's own samples, and against the rules of Unicode Standard Annex 29
// written down a second time.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <fstream>
#include <initializer_list>
#include <sstream>
#include <string>
#include <vector>

#include "core/text.h"
#include "core/utf8.h"

namespace orvane::test {
namespace {

/// Checks that each prefix of `codePoints` has as many clusters as it has places that `breaksBefore` marks. As whether
/// there is a break never depends on what comes later, this pins down the place of each.
void expectBreaks(const std::vector<std::int32_t>& codePoints, const std::vector<bool>& breaksBefore,
                  const std::string& sample) {
  std::string text;
  std::size_t clusters = 0;
  for (std::size_t index = 0; index < codePoints.size(); ++index) {
    appendUTF8(text, codePoints[index]);
    if (breaksBefore[index]) ++clusters;
    ASSERT_EQ(characterCount(text), clusters) << "first " << index + 1 << " characters of " << sample;
  }
}

TEST(GraphemeBreakTest, AgreesWithEachSampleOfTheUnicodeConsortium) {
  std::ifstream file(ORVANE_GRAPHEME_BREAK_TEST);
  ASSERT_TRUE(file) << "cannot read " << ORVANE_GRAPHEME_BREAK_TEST;
  int samples = 0;
  int announcedSamples = 0;
  for (std::string line; std::getline(file, line);) {
    const std::string announcement = "# Lines: ";
    if (line.starts_with(announcement)) announcedSamples = std::stoi(line.substr(announcement.size()));
    std::istringstream sample(line.substr(0, line.find('#')));
    std::vector<std::int32_t> codePoints;
    std::vector<bool> breaksBefore;
    for (std::string token; sample >> token;) {
      if (token == "÷" || token == "×") {
        breaksBefore.push_back(token == "÷");
      } else {
        codePoints.push_back(static_cast<std::int32_t>(std::stol(token, nullptr, 16)));
      }
    }
    if (codePoints.empty()) continue;
    ++samples;
    ASSERT_EQ(breaksBefore.size(), codePoints.size() + 1) << line;
    expectBreaks(codePoints, breaksBefore, line);
    if (HasFatalFailure()) return;
  }
  EXPECT_GT(samples, 0);
  EXPECT_EQ(samples, announcedSamples);
}

enum class Kind { cr, lf, control, extend, joiner, flag, prepend, spacing, l, v, t, lv, lvt, pictograph, other };

constexpr std::array<std::int32_t, 15> representatives = {'\r',   '\n',   1,      0x308,  0x200D, 0x1F1E6, 0x600, 0x903,
                                                          0x1100, 0x1160, 0x11A8, 0xAC00, 0xAC01, 0x1F600, 'a'};

bool isOneOf(Kind kind, std::initializer_list<Kind> kinds) {
  return std::find(kinds.begin(), kinds.end(), kind) != kinds.end();
}

/// Whether the annex puts a break before the last of `kinds`, which has at least two.
bool breaksBeforeLast(const std::vector<Kind>& kinds) {
  using enum Kind;
  const Kind after = kinds.back();
  const Kind before = kinds[kinds.size() - 2];
  if (before == cr && after == lf) return false;
  if (isOneOf(before, {cr, lf, control}) || isOneOf(after, {cr, lf, control})) return true;
  if (before == l && isOneOf(after, {l, v, lv, lvt})) return false;
  if (isOneOf(before, {lv, v}) && isOneOf(after, {v, t})) return false;
  if (isOneOf(before, {lvt, t}) && after == t) return false;
  if (isOneOf(after, {extend, joiner, spacing}) || before == prepend) return false;
  if (before == joiner && after == pictograph) {
    auto earlier = kinds.rbegin() + 2;
    while (earlier != kinds.rend() && *earlier == extend) ++earlier;
    if (earlier != kinds.rend() && *earlier == pictograph) return false;
  }
  if (before == flag && after == flag) {
    std::size_t flagsBefore = 0;
    for (auto earlier = kinds.rbegin() + 1; earlier != kinds.rend() && *earlier == flag; ++earlier) ++flagsBefore;
    return flagsBefore % 2 == 0;
  }
  return true;
}

TEST(GraphemeBreakTest, AgreesWithTheRulesForEverySequenceOfFourKinds) {
  constexpr std::size_t length = 4;
  std::size_t sequences = 1;
  for (std::size_t index = 0; index < length; ++index) sequences *= representatives.size();
  for (std::size_t sequence = 0; sequence < sequences; ++sequence) {
    std::vector<Kind> kinds;
    std::vector<std::int32_t> codePoints;
    std::vector<bool> breaksBefore;
    std::size_t rest = sequence;
    for (std::size_t index = 0; index < length; ++index) {
      const std::size_t kind = rest % representatives.size();
      rest /= representatives.size();
      kinds.push_back(static_cast<Kind>(kind));
      codePoints.push_back(representatives[kind]);
      breaksBefore.push_back(kinds.size() == 1 || breaksBeforeLast(kinds));
    }
    expectBreaks(codePoints, breaksBefore, testing::PrintToString(codePoints));
    if (HasFatalFailure()) return;
  }
}

}  // namespace
}  // namespace orvane::test
