#include "standin/meeting.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>

#include "standin/instant.h"
#include "standin/json_access.h"
#include "standin/text.h"

namespace orvane::standin {

namespace {

constexpr std::time_t secondsPerWeek = std::time_t{7} * 24 * 60 * 60;
constexpr std::size_t snippetCharactersBefore = 40;
constexpr std::size_t snippetCharacters = 120;

std::optional<std::string> optionalText(const JSON::Object& object, std::string_view key) {
  if (object.find(key) == nullptr) return std::nullopt;
  return textIn(object, key);
}

Meeting loadMeeting(const JSON::Object& data) {
  const std::string startedAt = textIn(data, "startedAt");
  const std::optional<std::time_t> start = parseInstant(startedAt);
  if (!start.has_value()) throw std::runtime_error("a meeting's startedAt cannot be read: " + startedAt);
  Meeting meeting{textIn(data, "id"),
                  textIn(data, "title"),
                  startedAt,
                  *start,
                  integerIn(data, "durationSeconds"),
                  optionalText(data, "sourceApp"),
                  listIn(data, "participants"),
                  optionalText(data, "notesMarkdown"),
                  textIn(data, "userNotes"),
                  {}};
  // A long talk is told once and repeated, so that the world stays readable.
  for (std::int64_t round = 0; round < integerIn(data, "repeatTranscript", 1); ++round) {
    for (const JSON& turn : listIn(data, "transcript")) {
      const JSON::Object& values = objectOf(turn);
      const std::int64_t offset = round * integerIn(data, "durationSeconds") / integerIn(data, "repeatTranscript", 1);
      meeting.transcript.push_back(
          {textIn(values, "speaker"), offset + integerIn(values, "seconds"), textIn(values, "text")});
    }
  }
  return meeting;
}

std::string timestamp(std::int64_t seconds) {
  char text[32];
  const int length = std::snprintf(text, sizeof text, "[%02lld:%02lld] ", static_cast<long long>(seconds / 60),
                                   static_cast<long long>(seconds % 60));
  return {text, static_cast<std::size_t>(length)};
}

// The words of `text`, from blank to blank.
std::vector<std::string_view> wordsOf(std::string_view text) {
  std::vector<std::string_view> words;
  for (std::size_t start = 0; (start = text.find_first_not_of(" \n", start)) != std::string_view::npos;) {
    const std::size_t end = std::min(text.find_first_of(" \n", start), text.size());
    words.push_back(text.substr(start, end - start));
    start = end;
  }
  return words;
}

}  // namespace

std::vector<Meeting> loadMeetings(const JSON::Object& world) {
  std::vector<Meeting> meetings;
  for (const JSON& data : listIn(world, "meetings")) {
    const Meeting meeting = loadMeeting(objectOf(data));
    meetings.push_back(meeting);
    for (std::int64_t week = 1; week < integerIn(objectOf(data), "repeatWeeks", 1); ++week) {
      Meeting earlier = meeting;
      earlier.id += "-" + std::to_string(week);
      earlier.start -= week * secondsPerWeek;
      earlier.startedAt = formatInstant(earlier.start);
      meetings.push_back(std::move(earlier));
    }
  }
  std::stable_sort(meetings.begin(), meetings.end(), [](const auto& a, const auto& b) { return a.start > b.start; });
  return meetings;
}

TranscriptExcerpt excerpt(const Meeting& meeting, std::size_t wordCap, bool timestamps) {
  TranscriptExcerpt result{"", 0, 0};
  for (const Turn& turn : meeting.transcript) {
    const std::vector<std::string_view> words = wordsOf(turn.text);
    result.totalWords += words.size();
    if (result.words == wordCap) continue;
    if (!result.text.empty()) result.text += '\n';
    if (timestamps) result.text += timestamp(turn.seconds);
    result.text += turn.speaker + ":";
    for (const std::string_view word : words) {
      if (result.words == wordCap) break;
      ++result.words;
      result.text += ' ';
      result.text += word;
    }
  }
  if (result.words < result.totalWords) {
    result.text += "\n[transcript truncated: " + std::to_string(result.words) + " of " +
                   std::to_string(result.totalWords) + " words]";
  }
  return result;
}

std::optional<std::string> snippet(const Meeting& meeting, const std::string& query) {
  const std::string part = lowercasedASCII(query);
  for (const Turn& turn : meeting.transcript) {
    const std::size_t found = lowercasedASCII(turn.text).find(part);
    if (found == std::string::npos) continue;
    const std::size_t before = codePointCount(std::string_view(turn.text).substr(0, found));
    const std::size_t start = before > snippetCharactersBefore ? before - snippetCharactersBefore : 0;
    const std::string_view cut = codePointSlice(turn.text, start, snippetCharacters);
    const bool toEnd = cut.data() + cut.size() == turn.text.data() + turn.text.size();
    return turn.speaker + ": " + (start > 0 ? "…" : "") + std::string(cut) + (toEnd ? "" : "…");
  }
  return std::nullopt;
}

}  // namespace orvane::standin
