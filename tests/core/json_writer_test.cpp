#include "core/json_writer.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/json_reader.h"
#include "tests/support/json_text.h"

namespace orvane::test {
namespace {

TEST(WriteCompactJSONTest, WritesWithoutWhiteSpaceInTheMembersOrder) {
  EXPECT_EQ(writeCompactJSON(parsed(R"( { "z" : [ 1 , { } , [ ] ] , "a" : null , "" : true } )")),
            R"({"z":[1,{},[]],"a":null,"":true})");
}

TEST(WriteCompactJSONTest, EscapesOnlyWhatItMust) {
  std::string all;
  for (int c = 0; c < 0x80; ++c) all += static_cast<char>(c);
  EXPECT_EQ(
      writeCompactJSON(JSON(all)),
      "\"\\u0000\\u0001\\u0002\\u0003\\u0004\\u0005\\u0006\\u0007\\b\\t\\n\\u000b\\f\\r\\u000e\\u000f"
      "\\u0010\\u0011\\u0012\\u0013\\u0014\\u0015\\u0016\\u0017\\u0018\\u0019\\u001a\\u001b\\u001c\\u001d\\u001e"
      "\\u001f !\\\"#$%&'()*+,-./0123456789:;<=>?@ABCDEFGHIJKLMNOPQRSTUVWXYZ[\\\\]^_`abcdefghijklmnopqrstuvwxyz{|}"
      "~\x7F\"");
  const std::string other = "\xC2\x85 \xC3\xA9 \xE2\x80\xA8 \xE2\x80\xA9 \xEF\xBF\xBF \xF0\x9F\x98\x80";
  EXPECT_EQ(writeCompactJSON(JSON(other)), "\"" + other + "\"");
}

TEST(WriteCompactJSONTest, KeysAreEscapedLikeStrings) {
  EXPECT_EQ(writeCompactJSON(JSON::Object{{"a\"/\n", 1}}), R"({"a\"/\n":1})");
}

TEST(WriteCompactJSONTest, SlashesAreEscapedOnlyOnDemand) {
  const JSON value = parsed(R"({"a/b":["/","\\/"]})");
  EXPECT_EQ(writeCompactJSON(value), R"({"a/b":["/","\\/"]})");
  EXPECT_EQ(writeCompactJSON(value, Slashes::escaped), R"({"a\/b":["\/","\\\/"]})");
}

TEST(WriteCompactJSONTest, AppendsToWhatIsThere) {
  std::string text = "head ";
  appendCompactJSON(text, JSON::Array{1, "a/b"}, Slashes::escaped);
  EXPECT_EQ(text, R"(head [1,"a\/b"])");
}

TEST(WriteJSONTest, TextThatIsNotUTF8IsNeverWritten) {
  for (const char* bytes : {"\x80", "\xFF", "\xC3", "abcdefgh\xC3", "\xED\xA0\x80", "\xC0\x80", "\xF4\x90\x80\x80"}) {
    const std::vector<JSON> values = {JSON(bytes), JSON(JSON::Array{1, bytes}), JSON(JSON::Object{{"a", bytes}}),
                                      JSON(JSON::Object{{bytes, 1}})};
    for (const JSON& value : values) {
      EXPECT_THROW(writeCompactJSON(value), JSONWriteError);
      EXPECT_THROW(writeCompactJSON(value, Slashes::escaped), JSONWriteError);
      EXPECT_THROW(writePrettyJSON(value), JSONWriteError);
    }
  }
}

TEST(WritePrettyJSONTest, IndentsAndSortsKeysAtEveryLevel) {
  EXPECT_EQ(writePrettyJSON(parsed(R"({"b":[1,{"z":true,"y":null}],"a":{},"c":[],"B":"a/b"})")),
            "{\n"
            "  \"B\": \"a/b\",\n"
            "  \"a\": {},\n"
            "  \"b\": [\n"
            "    1,\n"
            "    {\n"
            "      \"y\": null,\n"
            "      \"z\": true\n"
            "    }\n"
            "  ],\n"
            "  \"c\": []\n"
            "}");
}

TEST(WritePrettyJSONTest, SortsKeysByTheirBytes) {
  // U+FF5E sorts before U+1F600 by bytes, after it by UTF-16 units.
  const JSON value = JSON::Object{{"\xF0\x9F\x98\x80", 1}, {"\xEF\xBD\x9E", 2}, {"a", 3}, {"", 4}, {"Z", 5}, {"ab", 6}};
  EXPECT_EQ(writePrettyJSON(value),
            "{\n  \"\": 4,\n  \"Z\": 5,\n  \"a\": 3,\n  \"ab\": 6,\n  \"\xEF\xBD\x9E\": 2,\n  \"\xF0\x9F\x98\x80\": "
            "1\n}");
}

TEST(WritePrettyJSONTest, ScalarsAndEmptyContainersStayOnOneLine) {
  for (const char* text : {"null", "true", "1.50", "\"a\"", "[]", "{}"}) EXPECT_EQ(writePrettyJSON(parsed(text)), text);
}

TEST(WriteJSONTest, NumbersComeOutAsTheyWentIn) {
  const std::string text = R"([1.50,1E400,-0,1180591620717411303424,0.1000000000000000055511151231257827])";
  EXPECT_EQ(writeCompactJSON(parsed(text)), text);
  EXPECT_EQ(writeCompactJSON(parsed(writePrettyJSON(parsed(text)))), text);
}

TEST(WritePrettyJSONTest, IndentationStopsGrowingAtSixteenLevels) {
  const std::string text = writePrettyJSON(parsed(nestedArrays(100, "1")));
  const std::string widest(32, ' ');
  EXPECT_NE(text.find("\n" + widest + "["), std::string::npos);
  EXPECT_EQ(text.find(widest + " "), std::string::npos);
  EXPECT_NE(text.find("\n" + widest + "1\n" + widest + "]"), std::string::npos);
  EXPECT_TRUE(text.ends_with("\n  ]\n]"));
}

TEST(WriteJSONTest, TheDeepestReadableValueCanBeWritten) {
  const std::string arrays = nestedArrays(maxReadNesting, "1");
  EXPECT_EQ(writeCompactJSON(parsed(arrays)), arrays);
  EXPECT_EQ(writeCompactJSON(parsed(writePrettyJSON(parsed(arrays)))), arrays);
}

TEST(WriteJSONTest, WhatIsWrittenReadsBackAsTheSame) {
  std::string all;
  for (int c = 0; c < 0x80; ++c) all += static_cast<char>(c);
  const JSON value = JSON::Object{{all, JSON::Array{all, JSON(), false, 12, JSON::Object{{"\xE2\x82\xAC", all}}}}};
  EXPECT_EQ(parsed(writeCompactJSON(value)), value);
  EXPECT_EQ(parsed(writeCompactJSON(value, Slashes::escaped)), value);
  EXPECT_EQ(parsed(writePrettyJSON(value)), value);
}

}  // namespace
}  // namespace orvane::test
