#include "core/utf8.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace orvane::test {
namespace {

/// Whether `bytes` is well-formed, written down from the table of well-formed byte sequences (Unicode, table 3-7).
bool isWellFormed(const std::string& bytes) {
  std::size_t i = 0;
  const auto byte = [&](std::size_t index) {
    return index < bytes.size() ? static_cast<unsigned char>(bytes[index]) : 0U;
  };
  const auto in = [](unsigned value, unsigned low, unsigned high) { return value >= low && value <= high; };
  while (i < bytes.size()) {
    const unsigned lead = byte(i);
    if (lead <= 0x7F) {
      i += 1;
    } else if (in(lead, 0xC2, 0xDF) && in(byte(i + 1), 0x80, 0xBF)) {
      i += 2;
    } else if (in(lead, 0xE0, 0xEF) && in(byte(i + 1), lead == 0xE0 ? 0xA0 : 0x80, lead == 0xED ? 0x9F : 0xBF) &&
               in(byte(i + 2), 0x80, 0xBF)) {
      i += 3;
    } else if (in(lead, 0xF0, 0xF4) && in(byte(i + 1), lead == 0xF0 ? 0x90 : 0x80, lead == 0xF4 ? 0x8F : 0xBF) &&
               in(byte(i + 2), 0x80, 0xBF) && in(byte(i + 3), 0x80, 0xBF)) {
      i += 4;
    } else {
      return false;
    }
  }
  return true;
}

TEST(UTF8Test, EveryCharacterIsEncodedDecodedAndValid) {
  for (std::int32_t codePoint = 0; codePoint <= 0x10FFFF; ++codePoint) {
    if (codePoint >= 0xD800 && codePoint <= 0xDFFF) continue;
    std::string text = "x";
    appendUTF8(text, codePoint);
    const std::size_t length = codePoint < 0x80 ? 1 : codePoint < 0x800 ? 2 : codePoint < 0x10000 ? 3 : 4;
    ASSERT_EQ(text.size(), 1 + length) << codePoint;
    const DecodedCharacter character = decodeUTF8(std::string_view(text).substr(1));
    ASSERT_EQ(character.codePoint, codePoint);
    ASSERT_EQ(character.length, length);
    ASSERT_TRUE(isValidUTF8(text)) << codePoint;
  }
}

TEST(UTF8Test, EveryShortByteSequenceIsJudgedRight) {
  for (unsigned first = 0; first < 256; ++first) {
    const std::string one(1, static_cast<char>(first));
    ASSERT_EQ(isValidUTF8(one), isWellFormed(one)) << first;
    for (unsigned second = 0; second < 256; ++second) {
      const std::string two = one + static_cast<char>(second);
      ASSERT_EQ(isValidUTF8(two), isWellFormed(two)) << first << ' ' << second;
    }
  }
}

TEST(UTF8Test, EveryBoundaryOfLongerSequencesIsJudgedRight) {
  const std::vector<unsigned> edges = {0x00, 0x41, 0x7F, 0x80, 0x8F, 0x90, 0x9F, 0xA0, 0xBF, 0xC0, 0xC2, 0xFF};
  for (unsigned lead = 0xC0; lead < 256; ++lead) {
    for (const unsigned second : edges) {
      for (const unsigned third : edges) {
        const std::string three{static_cast<char>(lead), static_cast<char>(second), static_cast<char>(third)};
        ASSERT_EQ(isValidUTF8(three), isWellFormed(three)) << testing::PrintToString(three);
        for (const unsigned fourth : edges) {
          const std::string four = three + static_cast<char>(fourth);
          ASSERT_EQ(isValidUTF8(four), isWellFormed(four)) << testing::PrintToString(four);
          ASSERT_EQ(decodeUTF8(four).length != 0,
                    isWellFormed(four.substr(0, 2)) || isWellFormed(four.substr(0, 3)) || isWellFormed(four))
              << testing::PrintToString(four);
        }
      }
    }
  }
}

TEST(UTF8Test, AFaultIsFoundWhereverItStands) {
  // The quick look at eight ASCII bytes at a time must not step over one.
  for (std::size_t length = 0; length < 40; ++length) {
    const std::string ascii(length, 'a');
    EXPECT_TRUE(isValidUTF8(ascii));
    for (std::size_t position = 0; position <= length; ++position) {
      std::string text = ascii;
      text.insert(position, "\xC3");
      EXPECT_FALSE(isValidUTF8(text)) << length << ' ' << position;
      text.insert(position + 1, "\xA9");
      EXPECT_TRUE(isValidUTF8(text)) << length << ' ' << position;
    }
  }
}

TEST(UTF8Test, NulIsACharacterAndNothingIsValid) {
  EXPECT_TRUE(isValidUTF8(""));
  EXPECT_TRUE(isValidUTF8(std::string_view("a\0b", 3)));
  EXPECT_FALSE(isValidUTF8(std::string_view("a\0\xFF", 3)));
}

TEST(UTF8Test, DecodingReportsAFault) {
  for (const char* bytes : {"\x80", "\xFF", "\xC3", "\xC3(", "\xED\xA0\x80", "\xE2\x82", "\xC0\x80"}) {
    EXPECT_EQ(decodeUTF8(bytes).codePoint, -1) << testing::PrintToString(bytes);
    EXPECT_EQ(decodeUTF8(bytes).length, 0U) << testing::PrintToString(bytes);
  }
}

}  // namespace
}  // namespace orvane::test
