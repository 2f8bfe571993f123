#include "core/json_reader.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/json_writer.h"
#include "tests/support/json_text.h"
#include "tests/support/sizes.h"

namespace orvane::test {
namespace {

std::string rewritten(std::string_view text) { return writeCompactJSON(parsed(text)); }

TEST(ReadJSONTest, ReadsEveryKindOfValue) {
  for (const char* text : {"null", "true", "false", "0", "\"\"", "[]", "{}", "\"text\"",
                           R"([null,true,false,1,"a",[],{}])", R"({"a":{"b":[1,2,{"c":null}]},"d":""})"}) {
    EXPECT_EQ(rewritten(text), text);
  }
}

TEST(ReadJSONTest, AllowsWhiteSpaceAroundEverything) {
  EXPECT_EQ(rewritten(" \t\r\n{ \"a\" :\n[ 1 , 2 ]\r}\n\t "), R"({"a":[1,2]})");
}

TEST(ReadJSONTest, NumbersKeepEveryCharacter) {
  for (const char* text : {"0",
                           "-0",
                           "1",
                           "-1",
                           "1.50",
                           "1e5",
                           "1E+5",
                           "1e-5",
                           "1.0",
                           "100.000",
                           "1e400",
                           "-1E-400",
                           "0.5",
                           "0e0",
                           "0.0",
                           "1180591620717411303424",
                           "9223372036854775807",
                           "9223372036854775808",
                           "18446744073709551615",
                           "18446744073709551616",
                           "-9223372036854775808",
                           "-9223372036854775809",
                           "0.1000000000000000055511151231257827",
                           "1.7976931348623157e308",
                           "3.141592653589793238462643383279502884197"}) {
    EXPECT_EQ(rewritten(text), text);
    EXPECT_EQ(rewritten("[" + std::string(text) + "]"), "[" + std::string(text) + "]");
  }
}

TEST(ReadJSONTest, NumbersOfAnyLengthKeepEveryDigit) {
  for (const std::size_t digits : {16U, 17U, 18U, 19U, 20U, 21U, 100U, 5000U, 100000U}) {
    const std::string integer = "7" + std::string(digits, '3');
    EXPECT_EQ(rewritten(integer), integer) << digits;
    const std::string fraction = "0." + std::string(digits, '4');
    EXPECT_EQ(rewritten(fraction), fraction) << digits;
    const std::string both = "[-" + integer + "." + integer + "e-12]";
    EXPECT_EQ(rewritten(both), both) << digits;
  }
}

TEST(ReadJSONTest, RefusesWhatIsNotJSON) {
  const std::vector<std::string> texts = {"",
                                          " ",
                                          "\n",
                                          "nul",
                                          "nulll",
                                          "True",
                                          "{",
                                          "}",
                                          "[",
                                          "]",
                                          "[1",
                                          "[1,]",
                                          "[,1]",
                                          "[1 2]",
                                          "{\"a\"}",
                                          "{\"a\":}",
                                          "{\"a\":1,}",
                                          "{,}",
                                          "{a:1}",
                                          "{'a':1}",
                                          "{1:2}",
                                          "\"",
                                          "\"a",
                                          "'a'",
                                          "01",
                                          "-01",
                                          "+1",
                                          "-",
                                          ".5",
                                          "5.",
                                          "1.e5",
                                          "1e",
                                          "1e+",
                                          "0x10",
                                          "NaN",
                                          "Infinity",
                                          "-Infinity",
                                          "1 2",
                                          "{} {}",
                                          "[]]",
                                          "{}}",
                                          "// c\n1",
                                          "1 // c",
                                          "/* c */ 1",
                                          "[1,/**/2]",
                                          "\"\\x\"",
                                          "\"\\u12\"",
                                          "\"\\u123g\"",
                                          "\"\\",
                                          "\"\t\"",
                                          "\"\n\"",
                                          "\"a\x01\"",
                                          "\xEF\xBB\xBF{}",
                                          "{\"a\":1 \"b\":2}",
                                          "\v1",
                                          "\f1",
                                          "\xC2\xA0"
                                          "1",
                                          std::string("\0", 1),
                                          std::string("{}\0", 3),
                                          std::string("\"\0\"", 3),
                                          std::string("[1,\0 2]", 7)};
  for (const std::string& text : texts) {
    const JSONReadResult result = readJSON(text);
    EXPECT_EQ(result.outcome, JSONReadOutcome::invalid) << testing::PrintToString(text);
    EXPECT_TRUE(result.value.isNull()) << testing::PrintToString(text);
    EXPECT_EQ(readJSONObject(text), std::nullopt) << testing::PrintToString(text);
  }
}

TEST(ReadJSONTest, RefusesTextThatIsNotUTF8) {
  for (const char* bytes : {"\x80", "\xC3", "\xFF", "\xC0\xAF", "\xE0\x80\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80",
                            "\xF0\x80\x80\x80", "\xE2\x82", "\xF8\x88\x80\x80\x80"}) {
    const std::string text = "[\"" + std::string(bytes) + "\"]";
    EXPECT_EQ(readJSON(text).outcome, JSONReadOutcome::invalid) << testing::PrintToString(text);
    const std::string key = "{\"" + std::string(bytes) + "\":1}";
    EXPECT_EQ(readJSON(key).outcome, JSONReadOutcome::invalid) << testing::PrintToString(key);
  }
}

TEST(ReadJSONTest, DecodesEscapes) {
  const JSON value = parsed(R"("\"\\\/\b\f\n\r\t\u0000\u0041\u00e9\u20AC\ud83d\ude00")");
  ASSERT_NE(value.asString(), nullptr);
  EXPECT_EQ(*value.asString(), std::string("\"\\/\b\f\n\r\t\0A\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80", 19));
}

TEST(ReadJSONTest, RefusesLoneSurrogates) {
  for (const char* text :
       {R"("\ud800")", R"("\udc00")", R"("\ud800x")", R"("\ud800\u0041")", R"("\ud800\ud800")", R"({"\udfff":1})"}) {
    EXPECT_EQ(readJSON(text).outcome, JSONReadOutcome::invalid) << text;
  }
}

TEST(ReadJSONTest, OfDuplicateKeysTheLastStays) {
  EXPECT_EQ(rewritten(R"({"a":1,"b":2,"a":3})"), R"({"a":3,"b":2})");
  EXPECT_EQ(rewritten(R"({"_agent":1,"\u005fagent":2,"_\u0061gent":[3]})"), R"({"_agent":[3]})");
  EXPECT_EQ(rewritten(R"({"a":{"x":1,"x":2},"a":null})"), R"({"a":null})");
}

TEST(ReadJSONTest, KeysAreKeptApartByTheirBytes) {
  // Precomposed and decomposed é are different keys.
  EXPECT_EQ(parsedObject("{\"\xC3\xA9\":1,\"e\xCC\x81\":2}").size(), 2U);
  EXPECT_EQ(parsedObject(R"({"":1,"\u0000":2,"a":3,"A":4})").size(), 4U);
}

TEST(ReadJSONTest, FollowsNestingUpToTheLimitAndTellsWhatIsDeeper) {
  const std::string atLimit = nestedArrays(maxReadNesting);
  EXPECT_EQ(rewritten(atLimit), atLimit);
  EXPECT_EQ(rewritten(nestedArrays(maxReadNesting, "1")), nestedArrays(maxReadNesting, "1"));
  EXPECT_EQ(readJSON(nestedArrays(maxReadNesting + 1)).outcome, JSONReadOutcome::tooDeep);
  EXPECT_TRUE(readJSON(nestedArrays(maxReadNesting + 1)).value.isNull());
  EXPECT_EQ(readJSONObject("{\"a\":" + nestedArrays(maxReadNesting) + "}"), std::nullopt);
  std::string objects = "1";
  for (std::size_t level = 0; level < maxReadNesting; ++level) objects = "{\"a\":" + objects + "}";
  EXPECT_EQ(rewritten(objects), objects);
  EXPECT_EQ(readJSON("{\"a\":" + objects + "}").outcome, JSONReadOutcome::tooDeep);
}

TEST(ReadJSONTest, ExtremeNestingNeverExhaustsTheStack) {
  EXPECT_EQ(readJSON(std::string(mebibyte, '[')).outcome, JSONReadOutcome::invalid);
  EXPECT_EQ(readJSON(nestedArrays(500000)).outcome, JSONReadOutcome::tooDeep);
  EXPECT_EQ(readJSON("{\"a\":" + nestedArrays(500000) + "}").outcome, JSONReadOutcome::tooDeep);
  std::string objects;
  while (objects.size() < mebibyte) objects += "{\"a\":";
  EXPECT_EQ(readJSON(objects).outcome, JSONReadOutcome::invalid);
}

TEST(ReadJSONTest, LargeFlatTextIsReadWhole) {
  std::string objects = "{";
  for (int i = 0; objects.size() < 1000000; ++i) objects += "\"k" + std::to_string(i) + "\":0,";
  objects += "\"k0\":1}";
  const JSON::Object object = parsedObject(objects);
  EXPECT_GT(object.size(), 80000U);
  EXPECT_EQ(*object.find("k0"), JSON(1));
  EXPECT_EQ(parsed("[" + std::string(500000, ' ') + "]"), JSON(JSON::Array()));
}

TEST(ReadJSONTest, LongStringsPassWhole) {
  const std::string text = "\"" + std::string(700000, 'x') + "\\n\xE2\x82\xAC" + std::string(300000, 'y') + "\"";
  EXPECT_EQ(rewritten(text), text);
}

TEST(ReadJSONObjectTest, TakesObjectsOnly) {
  EXPECT_EQ(readJSONObject(" {} \n"), JSON::Object());
  EXPECT_EQ(readJSONObject(R"({"a":1})"), (JSON::Object{{"a", 1}}));
  for (const char* text : {"[]", "1", "null", "\"{}\"", "true", "[{}]"}) EXPECT_EQ(readJSONObject(text), std::nullopt);
}

}  // namespace
}  // namespace orvane::test
