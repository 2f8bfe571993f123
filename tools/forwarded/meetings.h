// The forwarded tools that read captured meetings. Dates, limits and defaults are the application's to interpret; the
// descriptions state them.
#pragma once

#include <string_view>

#include "core/json.h"
#include "tools/forwarded_tool.h"
#include "tools/schema.h"

namespace orvane {

/// list_meetings: the meetings that pass some filters, page by page.
struct ListMeetingsTool : ForwardedTool<ListMeetingsTool> {
  static constexpr std::string_view name = "list_meetings";
  static constexpr std::string_view docFile = "meetings.md";
  static constexpr std::string_view text =
      "List and filter the user's captured meetings. Use this for browsing recent meetings, narrowing by source app, "
      "checking whether notes or a transcript exist, or finding candidate meeting ids before fetching notes or "
      "transcripts. Returns richer metadata when available while tolerating older meeting records. Meeting content is "
      "sensitive: this tool is read-only but still requires the Orvane app's meeting consent gate because transcripts "
      "and notes can contain other people's speech. Requires the Orvane app to be running.";

  static const JSON& inputSchema() {
    static const JSON schema = objectSchema({
        stringProperty("query", "Optional search text matched against meeting titles and transcripts."),
        stringProperty("sourceApp",
                       "Optional case-insensitive source app filter, such as Zoom, Arc, Chrome, or Teams."),
        booleanProperty("hasNotes", "Optional filter for meetings with or without generated notes."),
        stringProperty(
            "startedAfter",
            "Optional lower bound for meeting start time. Accepts an ISO 8601 datetime or a date-only local day like "
            "2026-06-01."),
        stringProperty(
            "startedBefore",
            "Optional upper bound for meeting start time. Accepts an ISO 8601 datetime or a date-only local day like "
            "2026-06-01."),
        integerProperty("limit", "Maximum number of results (default 10, max 50)."),
        integerProperty("offset", "Pagination offset into the filtered result set."),
    });
    return schema;
  }
};

/// search_meetings: the meetings that mention a text, or the latest ones.
struct SearchMeetingsTool : ForwardedTool<SearchMeetingsTool> {
  static constexpr std::string_view name = "search_meetings";
  static constexpr std::string_view docFile = "meetings.md";
  static constexpr std::string_view text =
      "Search the user's captured meetings, or list the most recent ones. Use this when the user asks about a past "
      "meeting or call — \"what did we decide about pricing last week\", \"summarize Monday's standup\". With no "
      "query it returns the most recent meetings; with a query it matches meeting titles and full transcripts "
      "(case-insensitive substring) and includes a short transcript snippet around the first match. Each result has: "
      "id, title, startedAt (ISO 8601), durationSeconds, participantCount, sourceApp (the meeting app, when "
      "detected), hasNotes (whether generated notes exist), and snippet (for transcript matches). Follow up with "
      "get_meeting using the returned id to read notes or the full transcript. Meeting content is sensitive: it is "
      "stored only on this Mac and never uploaded — treat it accordingly. Prefer list_meetings when you need filters "
      "or pagination. Requires the Orvane app to be running.";

  static const JSON& inputSchema() {
    static const JSON schema = objectSchema({
        stringProperty(
            "query",
            "Search text matched against meeting titles and transcripts (case-insensitive substring). Omit or pass an "
            "empty string to list the most recent meetings."),
        integerProperty("limit", "Maximum number of results (default 10, max 25)."),
    });
    return schema;
  }
};

/// get_meeting: the notes or the transcript of one meeting, or both.
struct GetMeetingTool : ForwardedTool<GetMeetingTool> {
  static constexpr std::string_view name = "get_meeting";
  static constexpr std::string_view docFile = "meetings.md";
  static constexpr std::string_view text =
      "Fetch one captured meeting by id (from search_meetings): its generated notes, its full speaker-attributed "
      "transcript, or both. Returns id, title, startedAt (ISO 8601), durationSeconds, participants ([{id, "
      "displayName}]), notesMarkdown (when notes were generated and requested), and transcript (one \"Name: text\" "
      "line per speaking turn; very long transcripts are truncated with a marker). Prefer include=\"notes\" when the "
      "user wants decisions or action items — notes are much shorter than the raw transcript. Meeting content is "
      "sensitive: it is stored only on this Mac, encrypted at rest, and never uploaded — treat it accordingly. "
      "Requires the Orvane app to be running.";

  static const JSON& inputSchema() {
    static const JSON schema = objectSchema({
        stringProperty("id", "Meeting id, as returned by search_meetings.").required(),
        stringProperty(
            "include",
            "What to return: \"notes\" (generated meeting notes only), \"transcript\" (full speaker-attributed "
            "transcript only), or \"both\" (default).")
            .oneOf({"notes", "transcript", "both"}),
    });
    return schema;
  }
};

/// get_meeting_notes: the notes of one meeting.
struct GetMeetingNotesTool : ForwardedTool<GetMeetingNotesTool> {
  static constexpr std::string_view name = "get_meeting_notes";
  static constexpr std::string_view docFile = "meetings.md";
  static constexpr std::string_view text =
      "Fetch one captured meeting's generated notes and metadata by id. Prefer this over get_meeting when the user "
      "wants decisions, summary, or action items without the raw transcript. Pass includeUserNotes=true only when the "
      "user's typed in-meeting notes are specifically useful. Requires the Orvane app to be running and keeps the "
      "existing meeting consent boundary.";

  static const JSON& inputSchema() {
    static const JSON schema = objectSchema({
        stringProperty("id", "Meeting id, as returned by list_meetings or search_meetings.").required(),
        booleanProperty("includeUserNotes",
                        "Also include the user's verbatim typed notes from the meeting. Defaults to false."),
    });
    return schema;
  }
};

/// get_meeting_transcript: the transcript of one meeting.
struct GetMeetingTranscriptTool : ForwardedTool<GetMeetingTranscriptTool> {
  static constexpr std::string_view name = "get_meeting_transcript";
  static constexpr std::string_view docFile = "meetings.md";
  static constexpr std::string_view text =
      "Fetch one captured meeting's speaker-attributed transcript and metadata by id. Use this when the user needs "
      "the word-for-word record or a quote. Very long transcripts are capped with a truncation marker; raise wordCap "
      "only when needed. Requires the Orvane app to be running and keeps the existing meeting consent boundary.";

  static const JSON& inputSchema() {
    static const JSON schema = objectSchema({
        stringProperty("id", "Meeting id, as returned by list_meetings or search_meetings.").required(),
        integerProperty("wordCap", "Maximum transcript words to return (default 8000, max 20000)."),
        booleanProperty("includeTimestamps", "Prefix each speaking turn with an mm:ss timestamp. Defaults to false."),
    });
    return schema;
  }
};

}  // namespace orvane
