// Browsing, searching and reading captured meetings.
#include <algorithm>
#include <limits>

#include "standin/instant.h"
#include "standin/meeting.h"
#include "standin/methods.h"
#include "standin/refusal.h"
#include "standin/text.h"

namespace orvane::standin {

namespace {

constexpr std::int64_t defaultResults = 10;
constexpr std::int64_t mostListed = 50;
constexpr std::int64_t mostFound = 25;
constexpr std::int64_t defaultWordCap = 8000;
constexpr std::int64_t highestWordCap = 20000;

std::optional<std::time_t> instantArgument(const Arguments& arguments, std::string_view key) {
  const std::optional<std::string> text = arguments.optionalText(key);
  if (!text.has_value()) return std::nullopt;
  const std::optional<std::time_t> instant = parseInstant(*text);
  if (!instant.has_value()) {
    throw invalid("\"" + std::string(key) + "\" is neither an ISO 8601 datetime nor a date like 2026-06-01: " + *text,
                  JSON::Object{{"argument", key}});
  }
  return instant;
}

// An older record may lack what was not yet recorded then; its keys are left out.
JSON::Object summary(const Meeting& meeting) {
  JSON::Object values{{"id", meeting.id},
                      {"title", meeting.title},
                      {"startedAt", meeting.startedAt},
                      {"durationSeconds", meeting.durationSeconds},
                      {"participantCount", meeting.participants.size()}};
  if (meeting.sourceApp.has_value()) values.set("sourceApp", *meeting.sourceApp);
  values.set("hasNotes", meeting.notes.has_value());
  return values;
}

JSON::Object metadata(const Meeting& meeting) {
  JSON::Object values{{"id", meeting.id},
                      {"title", meeting.title},
                      {"startedAt", meeting.startedAt},
                      {"durationSeconds", meeting.durationSeconds},
                      {"participants", meeting.participants}};
  if (meeting.sourceApp.has_value()) values.set("sourceApp", *meeting.sourceApp);
  return values;
}

bool matches(const Meeting& meeting, const std::string& query) {
  return query.empty() || containsIgnoringCase(meeting.title, query) || snippet(meeting, query).has_value();
}

void addSnippet(JSON::Object& values, const Meeting& meeting, const std::string& query) {
  if (query.empty()) return;
  if (std::optional<std::string> found = snippet(meeting, query)) values.set("snippet", *std::move(found));
}

class Meetings {
 public:
  explicit Meetings(const JSON::Object& world) : meetings_(loadMeetings(world)) {}

  JSON list(const Arguments& arguments) {
    const std::string query = arguments.optionalText("query").value_or("");
    const std::optional<std::string> sourceApp = arguments.optionalText("sourceApp");
    const std::optional<bool> hasNotes = arguments.optionalFlag("hasNotes");
    const std::optional<std::time_t> after = instantArgument(arguments, "startedAfter");
    const std::optional<std::time_t> before = instantArgument(arguments, "startedBefore");
    const std::int64_t limit = arguments.integer("limit", defaultResults, 1, mostListed);
    const std::int64_t offset = arguments.integer("offset", 0, 0, std::numeric_limits<std::int64_t>::max());

    JSON::Array page;
    std::int64_t total = 0;
    for (const Meeting& meeting : meetings_) {
      if (sourceApp.has_value() && lowercasedASCII(meeting.sourceApp.value_or("")) != lowercasedASCII(*sourceApp)) {
        continue;
      }
      if (hasNotes.has_value() && meeting.notes.has_value() != *hasNotes) continue;
      if (after.has_value() && meeting.start < *after) continue;
      if (before.has_value() && meeting.start >= *before) continue;
      if (!matches(meeting, query)) continue;
      if (const std::int64_t place = total++ - offset; place < 0 || place >= limit) continue;
      JSON::Object entry = summary(meeting);
      entry.set("hasTranscript", !meeting.transcript.empty());
      addSnippet(entry, meeting, query);
      page.emplace_back(std::move(entry));
    }
    return JSON::Object{{"meetings", std::move(page)}, {"total", total}, {"offset", offset}, {"limit", limit}};
  }

  JSON search(const Arguments& arguments) {
    const std::string query = arguments.optionalText("query").value_or("");
    const auto limit = static_cast<std::size_t>(arguments.integer("limit", defaultResults, 1, mostFound));
    JSON::Array results;
    for (const Meeting& meeting : meetings_) {
      if (results.size() == limit) break;
      if (!matches(meeting, query)) continue;
      JSON::Object entry = summary(meeting);
      addSnippet(entry, meeting, query);
      results.emplace_back(std::move(entry));
    }
    return JSON::Object{{"results", std::move(results)}};
  }

  JSON get(const Arguments& arguments) {
    const Meeting& meeting = named(arguments);
    const std::string include = arguments.optionalChoice("include", {"notes", "transcript", "both"}).value_or("both");
    JSON::Object values = metadata(meeting);
    if (include != "transcript" && meeting.notes.has_value()) values.set("notesMarkdown", *meeting.notes);
    if (include != "notes") values.set("transcript", excerpt(meeting, defaultWordCap, false).text);
    return values;
  }

  JSON getNotes(const Arguments& arguments) {
    const Meeting& meeting = named(arguments);
    const bool withUserNotes = arguments.optionalFlag("includeUserNotes").value_or(false);
    JSON::Object values = metadata(meeting);
    values.set("hasNotes", meeting.notes.has_value());
    if (meeting.notes.has_value()) values.set("notesMarkdown", *meeting.notes);
    if (withUserNotes) values.set("userNotes", meeting.userNotes);
    return values;
  }

  JSON getTranscript(const Arguments& arguments) {
    const Meeting& meeting = named(arguments);
    const std::int64_t wordCap = arguments.integer("wordCap", defaultWordCap, 1, highestWordCap);
    const bool timestamps = arguments.optionalFlag("includeTimestamps").value_or(false);
    const TranscriptExcerpt part = excerpt(meeting, static_cast<std::size_t>(wordCap), timestamps);
    JSON::Object values = metadata(meeting);
    values.set("transcript", part.text);
    values.set("wordCount", part.words);
    values.set("totalWords", part.totalWords);
    values.set("truncated", part.words < part.totalWords);
    return values;
  }

 private:
  const Meeting& named(const Arguments& arguments) const {
    const std::string id = arguments.text("id");
    const auto found =
        std::find_if(meetings_.begin(), meetings_.end(), [&](const Meeting& meeting) { return meeting.id == id; });
    if (found == meetings_.end()) throw invalid("unknown meeting: " + id, JSON::Object{{"id", id}});
    return *found;
  }

  std::vector<Meeting> meetings_;
};

}  // namespace

void addMeetingsMethods(MethodTable& table, const JSON::Object& world) {
  const auto meetings = std::make_shared<Meetings>(world);
  addMethod(table, meetings, "list_meetings", Gate::meetings, &Meetings::list);
  addMethod(table, meetings, "search_meetings", Gate::meetings, &Meetings::search);
  addMethod(table, meetings, "get_meeting", Gate::meetings, &Meetings::get);
  addMethod(table, meetings, "get_meeting_notes", Gate::meetings, &Meetings::getNotes);
  addMethod(table, meetings, "get_meeting_transcript", Gate::meetings, &Meetings::getTranscript);
}

}  // namespace orvane::standin
