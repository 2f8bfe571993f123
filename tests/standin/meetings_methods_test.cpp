#include "tests/standin/application_support.h"

namespace orvane::standin {
namespace {

using MeetingsMethodsTest = StandinTest;

TEST_F(MeetingsMethodsTest, LimitsHaveDefaultsAndCaps) {
  EXPECT_EQ(listIn(call("list_meetings"), "meetings").size(), 10U);
  EXPECT_EQ(listIn(call("list_meetings", R"({"limit":500})"), "meetings").size(), 50U);
  EXPECT_EQ(listIn(call("search_meetings"), "results").size(), 10U);
  EXPECT_EQ(listIn(call("search_meetings", R"({"limit":500})"), "results").size(), 25U);
  EXPECT_EQ(listIn(call("list_meetings", R"({"limit":50,"offset":50})"), "meetings").size(), 9U);
}

TEST_F(MeetingsMethodsTest, FiltersNarrowTheList) {
  EXPECT_EQ(integerIn(call("list_meetings", R"({"sourceApp":"zOOm"})"), "total"), 1);
  EXPECT_EQ(integerIn(call("list_meetings", R"({"hasNotes":false})"), "total"), 2);
  EXPECT_EQ(integerIn(call("list_meetings", R"({"query":"DISCOUNT"})"), "total"), 1);
  EXPECT_EQ(integerIn(call("list_meetings", R"({"startedAfter":"2026-06-01T07:30:00Z"})"), "total"), 2);
  EXPECT_EQ(integerIn(call("list_meetings", R"({"startedAfter":"2026-06-01T07:30:01Z"})"), "total"), 1);
  EXPECT_EQ(integerIn(call("list_meetings", R"({"startedBefore":"2025-01-01"})"), "total"), 1);
  EXPECT_EQ(refusal("list_meetings", R"({"startedAfter":"soon"})"),
            R"(validation_failed: "startedAfter" is neither an ISO 8601 datetime nor a date like 2026-06-01: soon )"
            R"({"argument":"startedAfter"})");
}

TEST_F(MeetingsMethodsTest, SearchFindsTitlesAndTranscriptsWithASnippet) {
  const JSON::Object byTranscript = call("search_meetings", R"({"query":"annual DISCOUNT"})");
  ASSERT_EQ(listIn(byTranscript, "results").size(), 1U);
  EXPECT_NE(textIn(objectOf(listIn(byTranscript, "results")[0]), "snippet").find("annual discount"), std::string::npos);
  const JSON::Object byTitle = call("search_meetings", R"({"query":"from before"})");
  ASSERT_EQ(listIn(byTitle, "results").size(), 1U);
  EXPECT_EQ(objectOf(listIn(byTitle, "results")[0]).find("snippet"), nullptr);
}

TEST_F(MeetingsMethodsTest, IncludeChoosesWhatComes) {
  const auto has = [&](const std::string& include, const char* key) {
    return call("get_meeting", R"({"id":"mtg-pricing")" + include + "}").find(key) != nullptr;
  };
  EXPECT_TRUE(has("", "notesMarkdown") && has("", "transcript"));
  EXPECT_TRUE(has(R"(,"include":"notes")", "notesMarkdown") && !has(R"(,"include":"notes")", "transcript"));
  EXPECT_TRUE(!has(R"(,"include":"transcript")", "notesMarkdown") && has(R"(,"include":"transcript")", "transcript"));
  EXPECT_EQ(refusal("get_meeting", R"({"id":"mtg-pricing","include":"summary"})"),
            R"(validation_failed: "include" has an unknown value: summary {"argument":"include",)"
            R"("allowed":["notes","transcript","both"]})");
  EXPECT_EQ(refusal("get_meeting", R"({"id":"x"})"), R"(validation_failed: unknown meeting: x {"id":"x"})");
  EXPECT_EQ(refusal("get_meeting"), R"(validation_failed: missing required argument "id" {"argument":"id"})");
}

TEST_F(MeetingsMethodsTest, WordCapCutsWithAMarker) {
  EXPECT_EQ(textIn(call("get_meeting_transcript", R"({"id":"mtg-pricing","wordCap":3,"includeTimestamps":true})"),
                   "transcript"),
            "[00:04] Ada: Let us settle\n[transcript truncated: 3 of 34 words]");
  EXPECT_EQ(integerIn(call("get_meeting_transcript", R"({"id":"mtg-lecture"})"), "wordCount"), 8000);
  EXPECT_EQ(integerIn(call("get_meeting_transcript", R"({"id":"mtg-lecture","wordCap":99999})"), "wordCount"), 20000);
}

TEST_F(MeetingsMethodsTest, UserNotesComeOnlyWhenAskedFor) {
  EXPECT_EQ(call("get_meeting_notes", R"({"id":"mtg-pricing"})").find("userNotes"), nullptr);
  EXPECT_NE(call("get_meeting_notes", R"({"id":"mtg-pricing","includeUserNotes":true})").find("userNotes"), nullptr);
}

}  // namespace
}  // namespace orvane::standin
