#include "tools/local/dictionary.h"

#include <optional>

#include "core/files.h"
#include "core/text.h"
#include "core/user_paths.h"
#include "tools/documentation.h"
#include "tools/schema.h"

namespace orvane {

namespace {

enum class Section { none, replacements, fillers, corrections, disabled };

/// The section that `line` opens; nothing if it is no header.
std::optional<Section> sectionOpenedBy(std::string_view line) {
  const std::string header = lowercased(line);
  if (header == "[replacements]") return Section::replacements;
  if (header == "[fillers]") return Section::fillers;
  if (header == "[corrections]") return Section::corrections;
  if (header == "[disabled]") return Section::disabled;
  return std::nullopt;
}

/// The entries of a comma-separated list: trimmed, empty ones dropped.
std::vector<std::string> listEntries(std::string_view list) {
  std::vector<std::string> entries;
  for (const std::string_view piece : splitAt(list, ",")) {
    const std::string_view entry = trimBlanks(piece);
    if (!entry.empty()) entries.emplace_back(entry);
  }
  return entries;
}

void appendEntries(std::vector<std::string>& entries, std::string_view list) {
  for (std::string& entry : listEntries(list)) entries.push_back(std::move(entry));
}

/// Reads "spoken, spoken -> written".
void appendReplacements(std::vector<ReplacementsOverlay::Pair>& additions, std::string_view line) {
  constexpr std::string_view separator = "->";
  const std::size_t end = line.find(separator);
  if (end == std::string_view::npos) return;
  // Only the first separator separates; any further ones belong to the written text.
  const std::string_view written = trimBlanks(line.substr(end + separator.size()));
  if (written.empty()) return;
  for (std::string& spoken : listEntries(line.substr(0, end))) {
    additions.push_back({std::move(spoken), std::string(written)});
  }
}

JSON::Array stringArray(const std::vector<std::string>& strings) { return {strings.begin(), strings.end()}; }

}  // namespace

ReplacementsOverlay parseReplacementsOverlay(std::string_view text) {
  ReplacementsOverlay overlay;
  Section section = Section::none;
  for (const std::string_view wholeLine : splitLines(text)) {
    const std::string_view line = trimBlanks(wholeLine);
    if (line.empty() || line.starts_with('#')) continue;
    if (const std::optional<Section> opened = sectionOpenedBy(line)) {
      section = *opened;
      continue;
    }
    switch (section) {
      case Section::none:
        break;
      case Section::replacements:
        appendReplacements(overlay.additions, line);
        break;
      case Section::fillers:
        appendEntries(overlay.fillers, line);
        break;
      case Section::corrections:
        appendEntries(overlay.corrections, line);
        break;
      case Section::disabled:
        appendEntries(overlay.disabled, line);
        break;
    }
  }
  return overlay;
}

std::string ListReplacementsTool::description() {
  return "List the user's Dictionary entries (overlay only — built-in word substitutions are excluded). Returns "
         "additions, fillers, corrections, and the disabled list. The Dictionary is a customizable mapping of spoken "
         "phrases to written text applied to dictation." +
         configurationNotice();
}

const JSON& ListReplacementsTool::inputSchema() { return emptyInputSchema(); }

JSON ListReplacementsTool::call(const JSON::Object&) {
  const std::optional<std::string> text = readTextFile(configurationPath("replacements.txt"));
  const ReplacementsOverlay overlay = parseReplacementsOverlay(text.value_or(""));
  JSON::Array additions;
  for (const ReplacementsOverlay::Pair& pair : overlay.additions) {
    additions.push_back(JSON::Object{{"spoken", pair.spoken}, {"written", pair.written}});
  }
  return JSON::Object{{"additions", std::move(additions)},
                      {"fillers", stringArray(overlay.fillers)},
                      {"corrections", stringArray(overlay.corrections)},
                      {"disabled", stringArray(overlay.disabled)}};
}

}  // namespace orvane
