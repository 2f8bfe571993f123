#include "core/text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "core/utf8.h"

namespace orvane::test {
namespace {

using testing::ElementsAre;

const std::set<std::int32_t> blanks = {'\t',   ' ',    0xA0,   0x1680, 0x2000, 0x2001, 0x2002, 0x2003, 0x2004,
                                       0x2005, 0x2006, 0x2007, 0x2008, 0x2009, 0x200A, 0x202F, 0x205F, 0x3000};
const std::set<std::int32_t> newlines = {'\n', '\v', '\f', '\r', 0x85, 0x2028, 0x2029};

std::string encoded(std::int32_t codePoint) {
  std::string text;
  appendUTF8(text, codePoint);
  return text;
}

/// Calls `check` with every Unicode scalar value.
template <class Check>
void forEveryCharacter(Check check) {
  for (std::int32_t codePoint = 0; codePoint <= 0x10FFFF; ++codePoint) {
    if (codePoint < 0xD800 || codePoint > 0xDFFF) check(codePoint);
  }
}

TEST(TrimTest, BlanksAreTheTabAndUnicodesSpaces) {
  forEveryCharacter([](std::int32_t codePoint) {
    const std::string text = encoded(codePoint);
    const std::string trimmed = blanks.contains(codePoint) ? "" : text;
    ASSERT_EQ(trimBlanks(text), trimmed) << std::hex << codePoint;
    ASSERT_EQ(trimBlanks("é" + text), "é" + trimmed) << std::hex << codePoint;
    ASSERT_EQ(trimBlanks(text + "é"), trimmed + "é") << std::hex << codePoint;
  });
}

TEST(TrimTest, BlanksAndNewlinesAreBoth) {
  forEveryCharacter([](std::int32_t codePoint) {
    const std::string text = encoded(codePoint);
    const std::string trimmed = blanks.contains(codePoint) || newlines.contains(codePoint) ? "" : text;
    ASSERT_EQ(trimBlanksAndNewlines(text), trimmed) << std::hex << codePoint;
    ASSERT_EQ(trimBlanksAndNewlines("é" + text), "é" + trimmed) << std::hex << codePoint;
    ASSERT_EQ(trimBlanksAndNewlines(text + "é"), trimmed + "é") << std::hex << codePoint;
  });
}

TEST(TrimTest, RunsGoAndInnerBlanksStay) {
  EXPECT_EQ(trimBlanks(" \t\u3000\u00A0a \u2003b\u2003\u202F\t "), "a \u2003b");
  EXPECT_EQ(trimBlanksAndNewlines("\r\n \u2028\u0085a\n\u2029b\u2029\f\v\u3000\n"), "a\n\u2029b");
  EXPECT_EQ(trimBlanks(" \t\u2009"), "");
  EXPECT_EQ(trimBlanksAndNewlines(" \n\u2009\u0085"), "");
  EXPECT_EQ(trimBlanks(""), "");
  EXPECT_EQ(trimBlanksAndNewlines(""), "");
}

TEST(TrimTest, NewlinesStopTheTrimmingOfBlanks) { EXPECT_EQ(trimBlanks(" \n a \r "), "\n a \r"); }

TEST(TrimTest, ZeroWidthCharactersAreNoBlanks) {
  for (const std::string text : {"\u200B", "\u200D", "\u2060", "\uFEFF", "\u180E"}) {
    EXPECT_EQ(trimBlanksAndNewlines(text), text);
  }
}

TEST(TrimTest, CharactersThatEndInTheBytesOfABlankAreNotHarmed) {
  // Their last bytes are those of U+00A0, U+0085, U+3000 and U+2028 less the first.
  for (const std::string text : {"à", "Å", "\u4000", "\u1028", "\U0001F0A0"}) {
    EXPECT_EQ(trimBlanksAndNewlines(text), text);
    EXPECT_EQ(trimBlanksAndNewlines(" " + text + " "), text);
  }
}

TEST(TrimTest, OffendingBytesAreNoBlanks) {
  const std::vector<std::string> texts = {
      "\x80",         "\xA0",     "\xC2",         "\xE2\x80",         "\xE3\x80",
      "\xC2\xC2",     "\xFF",     "\xC0\xA0",     "\xED\xA0\x80",     "\xF8",
      "\xE0\x82\xA0", "a\x80",    "\xC2\xA0\xA0", "\xE2\x80\x80\x80", "\x80\x80\x80\x80\x80",
      "\xC2 \xC2",    "\xC2\xC2", "\xA0\xC2"};
  for (const std::string& text : texts) {
    // Only the leading U+00A0 and U+2000 of two of them are whole.
    std::string kept = text;
    if (text == "\xC2\xA0\xA0" || text == "\xE2\x80\x80\x80") kept = text.substr(text.size() - 1);
    EXPECT_EQ(trimBlanks(text), kept) << testing::PrintToString(text);
    EXPECT_EQ(trimBlanksAndNewlines("\n \u3000" + text + "\u3000 \n"), kept) << testing::PrintToString(text);
  }
}

TEST(TrimTest, TheResultPointsIntoTheText) {
  const std::string_view text = "  ab ";
  EXPECT_EQ(trimBlanks(text).data(), text.data() + 2);
}

TEST(SplitLinesTest, LinesEndAtEachNewlineAndNowhereElse) {
  forEveryCharacter([](std::int32_t codePoint) {
    const std::string text = "é" + encoded(codePoint) + "ü";
    const std::vector<std::string_view> lines = splitLines(text);
    const std::vector<std::string_view> expected =
        newlines.contains(codePoint) ? std::vector<std::string_view>{"é", "ü"} : std::vector<std::string_view>{text};
    ASSERT_EQ(lines, expected) << std::hex << codePoint;
  });
}

TEST(SplitLinesTest, EmptyLinesStay) {
  EXPECT_THAT(splitLines(""), ElementsAre(""));
  EXPECT_THAT(splitLines("\n"), ElementsAre("", ""));
  EXPECT_THAT(splitLines("a\r\nb"), ElementsAre("a", "", "b"));
  EXPECT_THAT(splitLines("\u2028a\n\n\u0085"), ElementsAre("", "a", "", "", ""));
}

TEST(SplitLinesTest, OffendingBytesAreNoNewlines) {
  EXPECT_THAT(splitLines("a\x85z"), ElementsAre("a\x85z"));
  EXPECT_THAT(splitLines("a\xE2\x80z"), ElementsAre("a\xE2\x80z"));
  EXPECT_THAT(splitLines("a\x80\xA8z"), ElementsAre("a\x80\xA8z"));
  EXPECT_THAT(splitLines("a\xE2\nz"), ElementsAre("a\xE2", "z"));
  EXPECT_THAT(splitLines("a\xE1\xC2\x85z"), ElementsAre("a\xE1", "z"));
}

TEST(SplitAtTest, GivesEveryPiece) {
  EXPECT_THAT(splitAt("", ","), ElementsAre(""));
  EXPECT_THAT(splitAt("a", ","), ElementsAre("a"));
  EXPECT_THAT(splitAt(",a,,b,", ","), ElementsAre("", "a", "", "b", ""));
  EXPECT_THAT(splitAt("a->b->", "->"), ElementsAre("a", "b", ""));
  EXPECT_THAT(splitAt("->->", "->"), ElementsAre("", "", ""));
  EXPECT_THAT(splitAt("a-->b>-", "->"), ElementsAre("a-", "b>-"));
}

TEST(LowercasedTest, MapsEachCharacter) {
  EXPECT_EQ(lowercased(""), "");
  EXPECT_EQ(lowercased("AZ az 09 [\\]^_` @"), "az az 09 [\\]^_` @");
  EXPECT_EQ(lowercased("ÄÖÜ ÑÇ"), "äöü ñç");
  EXPECT_EQ(lowercased("ΑΣ ЖЯ Ա Ა"), "ασ жя ա ა");
  EXPECT_EQ(lowercased("ẞ ß K Å ǅ"), "ß ß k å ǆ");
  EXPECT_EQ(lowercased("\U00010400"), "\U00010428");
  EXPECT_EQ(lowercased("日本 😀"), "日本 😀");
}

TEST(LowercasedTest, TheDottedCapitalIBecomesTwoCharacters) {
  EXPECT_EQ(lowercased("\u0130X"), "i\u0307x");
  EXPECT_EQ(lowercased("I\u0131"), "i\u0131");
}

TEST(LowercasedTest, OffendingBytesStay) { EXPECT_EQ(lowercased("A\xC3Z\xFF\xE2\x80"), "a\xC3z\xFF\xE2\x80"); }

TEST(LowercasedTest, TakesMappingsOfAnotherLength) {
  EXPECT_EQ(lowercased("\u023A"), "\u2C65");  // two bytes become three
  EXPECT_EQ(lowercased("\u2126"), "\u03C9");  // three bytes become two
}

TEST(CapitalizedTest, RaisesTheFirstLetterOfEachWordAndLowersTheRest) {
  EXPECT_EQ(capitalized(""), "");
  EXPECT_EQ(capitalized("my-own augment_name.v2"), "My-Own Augment_Name.V2");
  EXPECT_EQ(capitalized("HELLO wORLD"), "Hello World");
  EXPECT_EQ(capitalized("élan über ñu жук"), "Élan Über Ñu Жук");
  EXPECT_EQ(capitalized("devil's o\u2019clock 'tis"), "Devil's O\u2019clock 'Tis");
  EXPECT_EQ(capitalized("3d x2y 2 4"), "3D X2y 2 4");
  EXPECT_EQ(capitalized("日本 a"), "日本 A");
}

TEST(CapitalizedTest, MarksBelongToTheirWord) { EXPECT_EQ(capitalized("e\u0301ABC"), "E\u0301abc"); }

TEST(CapitalizedTest, WordsBeginWithTitleCase) {
  EXPECT_EQ(capitalized("ǆep"), "ǅep");
  EXPECT_EQ(capitalized("საქართველო"), "საქართველო");
}

TEST(CapitalizedTest, OffendingBytesStayAndEndAWord) {
  EXPECT_EQ(capitalized("ab\xFF"
                        "cd\xC3"),
            "Ab\xFF"
            "Cd\xC3");
}

TEST(CharacterCountTest, CountsWhatAPersonSees) {
  EXPECT_EQ(characterCount(""), 0U);
  EXPECT_EQ(characterCount("abc"), 3U);
  EXPECT_EQ(characterCount("a\r\nb"), 3U);
  EXPECT_EQ(characterCount("\n\r"), 2U);
  EXPECT_EQ(characterCount("\r\r\n\n"), 3U);
  EXPECT_EQ(characterCount("e\u0301"), 1U);
  EXPECT_EQ(characterCount("e\u0301\u0323\u0308o"), 2U);
  EXPECT_EQ(characterCount("\u0301"), 1U);
  EXPECT_EQ(characterCount("\n\u0301"), 2U);
  EXPECT_EQ(characterCount("한국어"), 3U);
  EXPECT_EQ(characterCount("\u1112\u1161\u11AB"), 1U);
  EXPECT_EQ(characterCount("नि"), 1U);
  EXPECT_EQ(characterCount("日本"), 2U);
}

TEST(CharacterCountTest, EmojiOfSeveralCharactersAreOne) {
  EXPECT_EQ(characterCount("😀"), 1U);
  EXPECT_EQ(characterCount("👍🏽"), 1U);
  EXPECT_EQ(characterCount("❤\uFE0F"), 1U);
  EXPECT_EQ(characterCount("1\uFE0F\u20E3"), 1U);
  EXPECT_EQ(characterCount("👨\u200D👩\u200D👧\u200D👦"), 1U);
  EXPECT_EQ(characterCount("👨\u200D👩 😀😀"), 4U);
  EXPECT_EQ(characterCount("🏳\uFE0F\u200D🌈"), 1U);
}

TEST(CharacterCountTest, FlagLettersPairFromTheStartOfTheirRun) {
  std::string letters;
  for (std::size_t count = 1; count <= 9; ++count) {
    letters += "\U0001F1E6";
    EXPECT_EQ(characterCount(letters), (count + 1) / 2) << count;
    EXPECT_EQ(characterCount("a" + letters + "b"), (count + 1) / 2 + 2) << count;
  }
  EXPECT_EQ(characterCount("🇩🇪🇫🇷"), 2U);
}

TEST(CharacterCountTest, EachOffendingByteIsACharacterOfItsOwn) {
  EXPECT_EQ(characterCount("\xFF"), 1U);
  EXPECT_EQ(characterCount("\xE2\x80"), 2U);
  EXPECT_EQ(characterCount("\xED\xA0\x80"), 3U);
  EXPECT_EQ(characterCount("e\xFF\u0301"), 3U);
  EXPECT_EQ(characterCount("\r\xFF\n"), 3U);
  EXPECT_EQ(characterCount("🇩\xFF🇪"), 3U);
}

TEST(CharacterCountTest, TakesTextWithZeros) { EXPECT_EQ(characterCount(std::string_view("a\0b", 3)), 3U); }

}  // namespace
}  // namespace orvane::test
