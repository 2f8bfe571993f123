#include "tools/local/dictionary.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "core/json_writer.h"
#include "tests/support/fake_platform.h"
#include "tests/support/file_content.h"
#include "tools/documentation.h"
#include "tools/schema.h"

namespace orvane {

void PrintTo(const ReplacementsOverlay::Pair& pair, std::ostream* stream) {
  *stream << testing::PrintToString(pair.spoken) << " -> " << testing::PrintToString(pair.written);
}

namespace test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Pair = ReplacementsOverlay::Pair;

TEST(DictionaryParserTest, FillsEachListFromItsSection) {
  const ReplacementsOverlay overlay = parseReplacementsOverlay(
      "# my dictionary\n"
      "[replacements]\n"
      "or vane, orvain -> Orvane\n"
      "[fillers]\n"
      "um, uh\n"
      "[corrections]\n"
      "scratch that\n"
      "[disabled]\n"
      "new line\n");
  EXPECT_THAT(overlay.additions, ElementsAre(Pair{"or vane", "Orvane"}, Pair{"orvain", "Orvane"}));
  EXPECT_THAT(overlay.fillers, ElementsAre("um", "uh"));
  EXPECT_THAT(overlay.corrections, ElementsAre("scratch that"));
  EXPECT_THAT(overlay.disabled, ElementsAre("new line"));
}

TEST(DictionaryParserTest, TextWithoutLinesSaysNothing) {
  for (const std::string text : {"", "\n", " \t\r\n\u2028 ", "[fillers]", "# [fillers]\num"}) {
    EXPECT_EQ(parseReplacementsOverlay(text), ReplacementsOverlay{}) << testing::PrintToString(text);
  }
}

TEST(DictionaryParserTest, HeadersMayBeInAnyCase) {
  const ReplacementsOverlay overlay =
      parseReplacementsOverlay("[REPLACEMENTS]\na->b\n[FillerS]\nc\n \t[cOrReCtIoNs]\u3000 \nd\n[Disabled]\ne");
  EXPECT_THAT(overlay.additions, ElementsAre(Pair{"a", "b"}));
  EXPECT_THAT(overlay.fillers, ElementsAre("c"));
  EXPECT_THAT(overlay.corrections, ElementsAre("d"));
  EXPECT_THAT(overlay.disabled, ElementsAre("e"));
}

TEST(DictionaryParserTest, WhatOnlyLooksLikeAHeaderIsContent) {
  const ReplacementsOverlay overlay = parseReplacementsOverlay(
      "[fillers]\n[ disabled ]\n[disabled] x\n[disabled]]\n[other]\n[]\n[disabled\n[f\u0130llers]\n[disabled]# no\n");
  EXPECT_THAT(overlay.fillers, ElementsAre("[ disabled ]", "[disabled] x", "[disabled]]", "[other]", "[]", "[disabled",
                                           "[f\u0130llers]", "[disabled]# no"));
  EXPECT_THAT(overlay.disabled, IsEmpty());
}

TEST(DictionaryParserTest, WhatOnlyLooksLikeAHeaderCanBeAReplacement) {
  const ReplacementsOverlay overlay = parseReplacementsOverlay("[replacements]\n[other]\n[fillers] -> x\n");
  EXPECT_THAT(overlay.additions, ElementsAre(Pair{"[fillers]", "x"}));
}

TEST(DictionaryParserTest, LinesBeforeTheFirstHeaderAreIgnored) {
  const ReplacementsOverlay overlay = parseReplacementsOverlay("a -> b\num\n[ fillers ]\nuh\n[fillers]\ner");
  EXPECT_THAT(overlay.additions, IsEmpty());
  EXPECT_THAT(overlay.fillers, ElementsAre("er"));
}

TEST(DictionaryParserTest, CommentsAreTakenBeforeHeadersAndContent) {
  const ReplacementsOverlay overlay = parseReplacementsOverlay(
      "[fillers]\n#[disabled]\n  # um\nuh\n[replacements]\n#a -> b\n\u3000#c -> d\n[disabled]\n# x\nword # a note\n");
  EXPECT_THAT(overlay.fillers, ElementsAre("uh"));
  EXPECT_THAT(overlay.additions, IsEmpty());
  EXPECT_THAT(overlay.disabled, ElementsAre("word # a note"));
}

TEST(DictionaryParserTest, ANumberSignInsideALineIsText) {
  const ReplacementsOverlay overlay = parseReplacementsOverlay("[replacements]\na, #b -> #c # d\n[fillers]\nx,#y");
  EXPECT_THAT(overlay.additions, ElementsAre(Pair{"a", "#c # d"}, Pair{"#b", "#c # d"}));
  EXPECT_THAT(overlay.fillers, ElementsAre("x", "#y"));
}

TEST(DictionaryParserTest, ListsDropEmptyItemsAndTrimTheOthers) {
  const ReplacementsOverlay overlay = parseReplacementsOverlay("[fillers]\num, uh, , er \n,,\n,\u00A0A b\t,C,");
  EXPECT_THAT(overlay.fillers, ElementsAre("um", "uh", "er", "A b", "C"));
}

TEST(DictionaryParserTest, ArrowsMeanNothingInLists) {
  EXPECT_THAT(parseReplacementsOverlay("[disabled]\na -> b, c").disabled, ElementsAre("a -> b", "c"));
}

TEST(DictionaryParserTest, OnlyTheFirstArrowSeparates) {
  const auto additions = [](const std::string& line) {
    return parseReplacementsOverlay("[replacements]\n" + line).additions;
  };
  EXPECT_THAT(additions("a -> b -> c"), ElementsAre(Pair{"a", "b -> c"}));
  EXPECT_THAT(additions("a  ->  b  ->  c  "), ElementsAre(Pair{"a", "b  ->  c"}));
  EXPECT_THAT(additions("a->->"), ElementsAre(Pair{"a", "->"}));
  EXPECT_THAT(additions("a -> ->"), ElementsAre(Pair{"a", "->"}));
  EXPECT_THAT(additions("a->b->"), ElementsAre(Pair{"a", "b->"}));
  EXPECT_THAT(additions("a --> b"), ElementsAre(Pair{"a -", "b"}));
  EXPECT_THAT(additions("a ->> b"), ElementsAre(Pair{"a", "> b"}));
  EXPECT_THAT(additions("a -> b, c"), ElementsAre(Pair{"a", "b, c"}));
}

TEST(DictionaryParserTest, ReplacementsThatLackASideAreSkippedAlone) {
  const ReplacementsOverlay overlay = parseReplacementsOverlay(
      "[replacements]\nno arrow\na - > b\n-> b\n \u2003 -> b\n , , -> b\na ->\na -> \u3000\n->\n->->\nx -> y\n");
  EXPECT_THAT(overlay.additions, ElementsAre(Pair{"x", "y"}));
}

TEST(DictionaryParserTest, SpokenPhrasesAreTrimmedAndKeepTheirCase) {
  const ReplacementsOverlay overlay = parseReplacementsOverlay("[replacements]\n , My App ,\t,ÀB\u00A0 -> myÀpp ");
  EXPECT_THAT(overlay.additions, ElementsAre(Pair{"My App", "myÀpp"}, Pair{"ÀB", "myÀpp"}));
}

TEST(DictionaryParserTest, RepeatedEntriesAndSectionsAddUp) {
  const ReplacementsOverlay overlay =
      parseReplacementsOverlay("[fillers]\num,um\n[disabled]\nx\n[fillers]\num\n[replacements]\na->b\na->b\na->c");
  EXPECT_THAT(overlay.fillers, ElementsAre("um", "um", "um"));
  EXPECT_THAT(overlay.disabled, ElementsAre("x"));
  EXPECT_THAT(overlay.additions, ElementsAre(Pair{"a", "b"}, Pair{"a", "b"}, Pair{"a", "c"}));
}

TEST(DictionaryParserTest, AnyNewlineEndsALine) {
  ReplacementsOverlay expected;
  expected.additions = {{"a", "b"}};
  expected.fillers = {"um", "uh"};
  for (const std::string newline : {"\n", "\r\n", "\r", "\v", "\f", "\u0085", "\u2028", "\u2029"}) {
    std::string text;
    for (const std::string line : {"# x", "[replacements]", "a -> b", "[fillers]", "um", "uh"}) text += line + newline;
    EXPECT_EQ(parseReplacementsOverlay(text), expected) << testing::PrintToString(newline);
  }
}

TEST(DictionaryParserTest, OtherSeparatorsDoNotEndALine) {
  const std::string text = "um\x1C uh\x1E er\u200B";
  EXPECT_THAT(parseReplacementsOverlay("[fillers]\n" + text).fillers, ElementsAre(text));
}

constexpr std::string_view nothing = R"({"additions":[],"fillers":[],"corrections":[],"disabled":[]})";

class ListReplacementsToolTest : public testing::Test {
 protected:
  std::string call() const { return writeCompactJSON(ListReplacementsTool::call({})); }

  FakeHome home_;
  const std::string path = home_.configurationFile("replacements.txt");
};

TEST_F(ListReplacementsToolTest, ReportsTheFile) {
  writeFile(path, "[replacements]\r\na, b -> c/\"d\"\r\n[fillers]\r\num\r\n[corrections]\r\nno\r\n[disabled]\r\nx\r\n");
  EXPECT_EQ(call(), R"({"additions":[{"spoken":"a","written":"c/\"d\""},{"spoken":"b","written":"c/\"d\""}],)"
                    R"("fillers":["um"],"corrections":["no"],"disabled":["x"]})");
}

TEST_F(ListReplacementsToolTest, IgnoresItsArguments) {
  writeFile(path, "[fillers]\num");
  EXPECT_EQ(ListReplacementsTool::call({{"fillers", false}}), ListReplacementsTool::call({}));
}

TEST_F(ListReplacementsToolTest, ReadsTheFileAfreshAndLeavesItAlone) {
  EXPECT_EQ(call(), nothing);
  EXPECT_FALSE(std::filesystem::exists(path));
  writeFile(path, "[fillers]\num");
  EXPECT_EQ(call(), R"({"additions":[],"fillers":["um"],"corrections":[],"disabled":[]})");
  EXPECT_EQ(readFile(path), "[fillers]\num");
  std::filesystem::remove(path);
  EXPECT_EQ(call(), nothing);
}

TEST_F(ListReplacementsToolTest, AnEmptyFileIsAnEmptyOverlay) {
  writeFile(path, "");
  EXPECT_EQ(call(), nothing);
}

TEST_F(ListReplacementsToolTest, OneOffendingByteAnywhereEmptiesEverything) {
  const std::string text = "[fillers]\num\n# note\n[disabled]\nx\n";
  for (std::size_t position = 0; position <= text.size(); ++position) {
    for (const std::string offense : {"\xFF", "\xC3", "\x80", "\xED\xA0\x80", "\xC0\x80", "\xF4\x90\x80\x80"}) {
      std::string broken = text;
      broken.insert(position, offense);
      writeFile(path, broken);
      ASSERT_EQ(call(), nothing) << position << " " << testing::PrintToString(offense);
    }
  }
}

TEST_F(ListReplacementsToolTest, WhatIsNoFileIsAnEmptyOverlay) {
  std::filesystem::create_directory(path);
  EXPECT_EQ(call(), nothing);
  std::filesystem::remove(path);

  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  EXPECT_EQ(call(), nothing);
  std::filesystem::remove(path);

  std::filesystem::create_symlink(home_.file("gone"), path);
  EXPECT_EQ(call(), nothing);
  writeFile(home_.file("gone"), "[fillers]\num");
  EXPECT_EQ(call(), R"({"additions":[],"fillers":["um"],"corrections":[],"disabled":[]})");
  std::filesystem::remove(path);

  std::filesystem::create_symlink("/dev/zero", path);
  EXPECT_EQ(call(), nothing);
}

TEST_F(ListReplacementsToolTest, SaysWhatItDoesAndWarns) {
  EXPECT_EQ(ListReplacementsTool::name, "list_dictionary");
  EXPECT_EQ(ListReplacementsTool::description(),
            "List the user's Dictionary entries (overlay only \xE2\x80\x94 built-in word substitutions are excluded). "
            "Returns additions, fillers, corrections, and the disabled list. The Dictionary is a customizable mapping "
            "of spoken phrases to written text applied to dictation." +
                configurationNotice());
  EXPECT_EQ(&ListReplacementsTool::inputSchema(), &emptyInputSchema());
}

}  // namespace
}  // namespace test
}  // namespace orvane
