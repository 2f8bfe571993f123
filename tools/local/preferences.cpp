#include "tools/local/preferences.h"

#include <cerrno>
#include <utility>
#include <variant>

#include "audit/context_audit_log.h"
#include "core/files.h"
#include "core/paths.h"
#include "core/text.h"
#include "core/user_paths.h"
#include "core/utf8.h"
#include "tools/documentation.h"
#include "tools/schema.h"

namespace orvane {

namespace {

constexpr std::string_view docFile = "preferences.md";

std::string preferencesPath() { return configurationPath("preferences.md"); }

JSON failure(std::string_view error) { return JSON::Object{{"error", error}}; }

JSON failure(std::string_view error, std::string_view fix) { return JSON::Object{{"error", error}, {"fix", fix}}; }

JSON writeFailure(const FileError& error) {
  return JSON::Object{{"error", "could not write preferences"}, {"details", error.description()}};
}

// The content of the preferences file; empty if there is none. Whether there is one is told by the attempt to read it:
// a file that merely cannot be seen must not pass for an absent one, for what is appended to nothing replaces it.
std::variant<std::string, FileError> readPreferences(const std::string& path) {
  std::variant<std::string, FileError> outcome = readWholeFile(path);
  const FileError* error = std::get_if<FileError>(&outcome);
  if (error != nullptr && (error->number == ENOENT || error->number == ENOTDIR)) return std::string();
  return outcome;
}

// The note as one line without blanks at its ends. A lone carriage return inside it stays.
std::string singleLine(std::string_view note) {
  std::string line;
  line.reserve(note.size());
  for (std::size_t i = 0; i < note.size(); ++i) {
    if (note[i] == '\r' && i + 1 < note.size() && note[i + 1] == '\n') ++i;
    line += note[i] == '\n' ? ' ' : note[i];
  }
  return std::string(trimBlanksAndNewlines(line));
}

// Whether the last user-perceived character of `text` is a line feed. After a carriage return it is not one: the two
// are one character.
bool endsWithLineFeed(std::string_view text) { return text.ends_with('\n') && !text.ends_with("\r\n"); }

JSON read() {
  const std::variant<std::string, FileError> existing = readPreferences(preferencesPath());
  if (const FileError* error = std::get_if<FileError>(&existing)) {
    return JSON::Object{{"error", "could not read preferences"}, {"details", error->description()}};
  }
  const std::string& content = std::get<std::string>(existing);
  if (!isValidUTF8(content)) {
    return JSON::Object{{"error", "could not read preferences"}, {"details", "the file is not valid UTF-8"}};
  }
  return JSON::Object{{"content", content}, {"char_count", characterCount(content)}};
}

JSON remember(const JSON::Object& arguments) {
  const JSON* argument = arguments.find("note");
  const std::string* text = argument != nullptr ? argument->asString() : nullptr;
  if (text == nullptr) return failure("note is required");
  const std::string note = singleLine(*text);
  if (note.empty()) return failure("note must be non-empty after trimming");
  if (note.size() > maxNoteBytes) return failure("note exceeds 1 KB limit");

  const std::string path = preferencesPath();
  if (const FileOutcome error = createDirectories(parentDirectory(path))) return writeFailure(*error);
  std::variant<std::string, FileError> existing = readPreferences(path);
  if (const FileError* error = std::get_if<FileError>(&existing)) {
    return JSON::Object{{"error", "could not read existing preferences"},
                        {"details", error->description()},
                        {"fix", "Open ~/.config/orvane/preferences.md, fix permissions or contents, then retry."}};
  }
  std::string content = std::get<std::string>(std::move(existing));
  if (!isValidUTF8(content)) {
    return failure("preferences file is not valid UTF-8",
                   "Open ~/.config/orvane/preferences.md and re-save as UTF-8 before remembering more — appending now "
                   "would overwrite the file.");
  }

  if (!content.empty() && !endsWithLineFeed(content)) content += '\n';
  content.append("- ").append(note).append("\n");
  if (content.size() > maxPreferencesBytes) {
    return failure("preferences file is full (32 KB cap)",
                   "Ask the user to prune preferences.md before remembering more.");
  }
  if (const FileOutcome error = replaceFile(path, content)) return writeFailure(*error);
  return JSON::Object{{"ok", true}, {"char_count", characterCount(content)}};
}

// A record that cannot be made or handed over, for want of memory or of a thread, is lost; the tool's result stands.
void audit(std::string_view tool, const JSON& result) try {
  ContextAuditRecord record{.tool = std::string(tool), .result = "ok"};
  const JSON::Object& fields = *result.asObject();
  const JSON* error = fields.find("error");
  if (error != nullptr && error->asString() != nullptr) record.result = "error: " + *error->asString();
  if (const JSON* count = fields.find("char_count")) record.output_bytes = count->asInteger();
  ContextAuditLog::shared().record(std::move(record));
} catch (const std::exception&) {
}

}  // namespace

std::string ReadPreferencesTool::description() {
  return "Read the user's personal-preference notes from ~/.config/orvane/preferences.md. This is a single flat "
         "markdown file the user (and you, via remember_preference) can append facts to: how they sign emails, who "
         "their team is, naming preferences, conventions. Call this at the start of any turn where personalization "
         "matters. Returns { content, char_count } — content is the empty string if the file doesn't exist yet." +
         docPointer(docFile);
}

const JSON& ReadPreferencesTool::inputSchema() { return emptyInputSchema(); }

JSON ReadPreferencesTool::call(const JSON::Object&) {
  JSON result = read();
  audit(name, result);
  return result;
}

std::string RememberPreferenceTool::description() {
  return "Append a short note to the user's preferences file at ~/.config/orvane/preferences.md. Use this when the "
         "user says \"remember that…\" or \"from now on…\" or you observe a stable preference worth keeping "
         "(signature line, naming conventions, the people in their team). Each note is a single line up to 1 KB; the "
         "whole file caps at 32 KB. Returns { ok, char_count } on success or { error } if the file is full (in which "
         "case ask the user to prune it via Dashboard → File → Open Preferences)." +
         docPointer(docFile);
}

const JSON& RememberPreferenceTool::inputSchema() {
  static const JSON schema =
      objectSchema({stringProperty("note", "Single-line preference note. Up to 1 KB.").required()});
  return schema;
}

JSON RememberPreferenceTool::call(const JSON::Object& arguments) {
  JSON result = remember(arguments);
  audit(name, result);
  return result;
}

}  // namespace orvane
