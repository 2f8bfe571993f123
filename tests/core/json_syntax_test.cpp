#include "core/json_syntax.h"

#include <gtest/gtest.h>

#include <string>

#include "core/json_reader.h"
#include "tests/support/json_text.h"

namespace orvane::test {
namespace {

// What both tell of a text that does not nest too deep for the reader.
void expectSameVerdict(const std::string& text) {
  EXPECT_EQ(isJSONText(text), readJSON(text).outcome == JSONReadOutcome::ok) << text;
}

TEST(IsJSONTextTest, AgreesWithTheReader) {
  const std::string whole = R"( {"a" : [1, -0.5e+1, 20E-3, 0, "\"\\\/\b\f\n\r\t\u00e9\uD83D\uDE00é"], "b":{}, )"
                            R"("c":[], "d":[{}, [[]], true, false, null, {"e":{"f":"g"}}]} )";
  ASSERT_TRUE(isJSONText(whole));
  for (std::size_t i = 0; i <= whole.size(); ++i) {
    expectSameVerdict(whole.substr(0, i));
    expectSameVerdict(whole.substr(i));
    for (const char* piece : {",", ":", "\"", "\\", "{", "}", "[", "]", "0", "-", ".", "e", "t", " ", "\x01", "\xC3"}) {
      expectSameVerdict(std::string(whole).insert(i, piece));
      if (i < whole.size()) expectSameVerdict(std::string(whole).replace(i, 1, piece));
    }
  }
}

TEST(IsJSONTextTest, AgreesWithTheReaderOnSmallTexts) {
  for (const char* text : {"",
                           " ",
                           "\t\n\r 1 \t\n\r",
                           "\f1",
                           "nul",
                           "nulll",
                           "True",
                           "01",
                           "-",
                           "+1",
                           "1.",
                           ".5",
                           "1e",
                           "1e+",
                           "1e5.5",
                           "0x1",
                           "1 2",
                           "\"",
                           "\"a",
                           "'a'",
                           R"("\x")",
                           R"("\u12")",
                           R"("\u12g4")",
                           R"("\uD800")",
                           R"("\uD800\n")",
                           R"("\uD800\u0041")",
                           R"("\uDC00")",
                           R"("\udbff\udfff")",
                           "[",
                           "]",
                           "[]]",
                           "[1,]",
                           "[,1]",
                           "[1 1]",
                           "{",
                           "{]",
                           "[}",
                           R"({"a"})",
                           R"({"a":})",
                           R"({"a":1,})",
                           R"({a:1})",
                           R"({1:1})",
                           R"({"a":1 "b":2})",
                           "[1]//",
                           "\xEF\xBB\xBF"
                           "1"}) {
    expectSameVerdict(text);
  }
}

TEST(IsJSONTextTest, DepthDoesNotMatter) {
  for (const std::size_t levels : {maxReadNesting, maxReadNesting + 1, std::size_t{500000}}) {
    EXPECT_TRUE(isJSONText(nestedArrays(levels)));
    EXPECT_TRUE(isJSONText(R"({"a":)" + nestedArrays(levels, R"({"b":[1,{}]},2)") + "}"));
    EXPECT_FALSE(isJSONText(nestedArrays(levels) + "]"));
    EXPECT_FALSE(isJSONText("[" + nestedArrays(levels)));
    EXPECT_FALSE(isJSONText(nestedArrays(levels, "x")));
  }
}

TEST(IsJSONTextTest, NorDoesTheSizeOfAnExponent) { EXPECT_TRUE(isJSONText("[1e99999999999,0E-99999999999]")); }

}  // namespace
}  // namespace orvane::test
