// Front matter of the user's augments: what is taken from it, and what it has to look like.
#include <gtest/gtest.h>

#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "tools/local/augments.h"

namespace orvane {

void PrintTo(const CatalogAugment& augment, std::ostream* stream) {
  *stream << testing::PrintToString(std::vector<std::string>{augment.id, augment.name, augment.category, augment.axis})
          << (augment.isBuiltIn ? " built in" : " the user's") << ", slots: " << augment.slotCost;
}

namespace test {
namespace {

/// A user's augment with defaults where nothing is given.
CatalogAugment userAugment(std::string id, std::string name, std::string category = "meta",
                           std::string axis = "domain") {
  return {.id = std::move(id), .name = std::move(name), .category = std::move(category), .axis = std::move(axis)};
}

const std::optional<CatalogAugment> plain = userAugment("my-id", "My-Id");

TEST(AugmentParserTest, TakesNameCategoryAndAxis) {
  EXPECT_EQ(parseUserAugment("---\nname: Poet\ncategory: art\naxis: tone\nauthor: me\n---\nname: body\n", "my-id"),
            userAugment("my-id", "Poet", "art", "tone"));
}

TEST(AugmentParserTest, EmptyFrontMatterGivesEveryDefault) {
  for (const std::string text : {"---\n---", "---\n---\n", "---\n\n---", "---\n---\n# body", "---\r\n---\r\n"}) {
    EXPECT_EQ(parseUserAugment(text, "my-id"), plain) << testing::PrintToString(text);
  }
}

TEST(AugmentParserTest, DefaultNameIsTheIdCapitalized) {
  EXPECT_EQ(parseUserAugment("---\n---", "élan vital")->name, "Élan Vital");
}

TEST(AugmentParserTest, BothMarksAreNeeded) {
  for (const std::string text :
       {"", " \n ", "--", "---", "----", "---\n", "---\n--", "--- ---", "name: a\n---\n---\n", "a\n---\nname: b\n---",
        "---\nname: a\n ---", "---\rname: a\r---", "---\nname: a\u2028---", "- --\n---"}) {
    EXPECT_EQ(parseUserAugment(text, "my-id"), std::nullopt) << testing::PrintToString(text);
  }
}

TEST(AugmentParserTest, TheTextIsTrimmedFirst) {
  EXPECT_EQ(parseUserAugment("\n\r\n \t\u3000\u2028---\nname: a\n---   \n\n", "my-id"), userAugment("my-id", "a"));
  // A character without width is no blank.
  EXPECT_EQ(parseUserAugment("\u200B---\nname: a\n---", "my-id"), std::nullopt);
}

TEST(AugmentParserTest, CarriageReturnsMayStandBeforeLineFeeds) {
  EXPECT_EQ(parseUserAugment("---\r\nname: Poet\r\ncategory: \"art\"\r\naxis: tone\r\n---\r\nbody\r\n", "my-id"),
            userAugment("my-id", "Poet", "art", "tone"));
}

TEST(AugmentParserTest, TheClosingMarkMayHaveATail) {
  EXPECT_EQ(parseUserAugment("---\nname: a\n---tail\naxis: tone\n---", "my-id"), userAugment("my-id", "a"));
  EXPECT_EQ(parseUserAugment("---\nname: a\n----\n", "my-id"), userAugment("my-id", "a"));
}

TEST(AugmentParserTest, TheRestOfTheOpeningLineBelongsToTheFrontMatter) {
  EXPECT_EQ(parseUserAugment("---name: a\naxis: tone\n---", "my-id"), userAugment("my-id", "a", "meta", "tone"));
  EXPECT_EQ(parseUserAugment("---- name: a\n---", "my-id"), plain);
}

TEST(AugmentParserTest, TheFirstClosingMarkCounts) {
  EXPECT_EQ(parseUserAugment("---\nname: a\n---\nname: b\n---\n", "my-id"), userAugment("my-id", "a"));
}

TEST(AugmentParserTest, FrontMatterLinesEndAtAnyNewline) {
  for (const std::string newline : {"\n", "\r\n", "\r", "\v", "\f", "\u0085", "\u2028", "\u2029"}) {
    EXPECT_EQ(parseUserAugment("---" + newline + "name: a" + newline + "axis: b" + newline + "\n---", "my-id"),
              userAugment("my-id", "a", "meta", "b"))
        << testing::PrintToString(newline);
  }
}

/// The name that a front matter of `lines` gives.
std::string nameFrom(const std::string& lines) { return parseUserAugment("---\n" + lines + "\n---", "my-id")->name; }

TEST(AugmentParserTest, KeysAndValuesAreTrimmed) {
  EXPECT_EQ(nameFrom(" \t name \u3000:\u00A0 A b \t "), "A b");
  EXPECT_EQ(nameFrom("name:a"), "a");
}

TEST(AugmentParserTest, TheFirstColonSeparates) {
  EXPECT_EQ(nameFrom("name: a: b"), "a: b");
  EXPECT_EQ(nameFrom("name:: a"), ": a");
}

TEST(AugmentParserTest, ValuesLoseTheirOuterQuotesAndAreNotTrimmedAgain) {
  EXPECT_EQ(nameFrom("name: \"a\""), "a");
  EXPECT_EQ(nameFrom("name: \"a"), "a");
  EXPECT_EQ(nameFrom("name: a\""), "a");
  EXPECT_EQ(nameFrom("name: \"\"a \"b\" c\"\"\""), "a \"b\" c");
  EXPECT_EQ(nameFrom("name: \" a \""), " a ");
  EXPECT_EQ(nameFrom("name: \" \""), " ");
  EXPECT_EQ(nameFrom("name: \" \"a\" \""), " \"a\" ");
  EXPECT_EQ(nameFrom("name: 'a'"), "'a'");
  EXPECT_EQ(nameFrom("\"name\": a"), "My-Id");
}

TEST(AugmentParserTest, EmptyValuesDoNotSetTheirKey) {
  for (const std::string value : {"", "  ", "\u3000", "\"", "\"\"", "\"\"\"", " \"\" "}) {
    EXPECT_EQ(nameFrom("name:" + value), "My-Id") << value;
    EXPECT_EQ(nameFrom("name: kept\nname:" + value), "kept") << value;
    EXPECT_EQ(parseUserAugment("---\ncategory:" + value + "\naxis:" + value + "\n---", "my-id"), plain) << value;
  }
}

TEST(AugmentParserTest, LinesWithoutAKeyOrAColonAreIgnored) {
  EXPECT_EQ(parseUserAugment("---\nname\n: a\n : b\nplain words\n\n---", "my-id"), plain);
}

TEST(AugmentParserTest, TheLastLineThatIsKeptCounts) {
  EXPECT_EQ(nameFrom("name: a\nname: b\nname:\nname: \"\""), "b");
}

TEST(AugmentParserTest, KeysAreCaseSensitive) { EXPECT_EQ(nameFrom("Name: a\nNAME: b"), "My-Id"); }

}  // namespace
}  // namespace test
}  // namespace orvane
