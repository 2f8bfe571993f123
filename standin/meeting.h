// The captured meetings of the world.
#pragma once

#include <ctime>
#include <optional>
#include <string>
#include <vector>

#include "core/json.h"

namespace orvane::standin {

/// What one person says without interruption.
struct Turn {
  std::string speaker;
  std::int64_t seconds;  ///< from the start of the meeting
  std::string text;
};

struct Meeting {
  std::string id;
  std::string title;
  std::string startedAt;  ///< ISO 8601
  std::time_t start;
  std::int64_t durationSeconds;
  std::optional<std::string> sourceApp;  ///< absent where the meeting's application was not recognised
  JSON::Array participants;              ///< of {id, displayName}
  std::optional<std::string> notes;      ///< generated notes, in Markdown
  std::string userNotes;                 ///< as the user typed them
  std::vector<Turn> transcript;
};

/// A transcript cut to a number of words.
struct TranscriptExcerpt {
  std::string text;  ///< one line per turn; a marker line at the end if something was left out
  std::size_t words;
  std::size_t totalWords;
};

/// The meetings that `world` describes, latest first. Throws std::runtime_error for a start that cannot be read.
std::vector<Meeting> loadMeetings(const JSON::Object& world);

/// At most `wordCap` words of the transcript, as "Name: text" lines, each after its time as mm:ss if wanted.
TranscriptExcerpt excerpt(const Meeting& meeting, std::size_t wordCap, bool timestamps);

/// The part of the transcript around the first place where `query` occurs, the case of A to Z aside.
std::optional<std::string> snippet(const Meeting& meeting, const std::string& query);

}  // namespace orvane::standin
