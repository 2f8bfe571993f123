#include "tools/local/augments.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <map>
#include <set>
#include <vector>

#include "core/files.h"
#include "core/paths.h"
#include "core/text.h"
#include "core/user_paths.h"
#include "core/utf8.h"
#include "platform/platform.h"
#include "tools/documentation.h"
#include "tools/schema.h"

namespace orvane {

namespace {

constexpr std::int64_t slotsTotal = 5;

struct BuiltInAugment {
  std::string_view id;
  std::string_view name;
  std::string_view category;
  std::string_view axis;
};

constexpr std::array<BuiltInAugment, 20> builtInAugments{{
    {"code-reviewer", "Code Reviewer", "engineering", "domain"},
    {"qa-engineer", "QA Engineer", "engineering", "domain"},
    {"security-auditor", "Security Auditor", "engineering", "domain"},
    {"system-architect", "System Architect", "engineering", "domain"},
    {"devops", "DevOps", "engineering", "domain"},
    {"database-expert", "Database Expert", "engineering", "domain"},
    {"ux-reviewer", "UX Reviewer", "design", "domain"},
    {"copy-editor", "Copy Editor", "design", "domain"},
    {"accessibility-checker", "Accessibility Checker", "design", "domain"},
    {"recipe-helper", "Recipe Helper", "everyday", "domain"},
    {"travel-planner", "Travel Planner", "everyday", "domain"},
    {"fitness-coach", "Fitness Coach", "everyday", "domain"},
    {"study-buddy", "Study Buddy", "everyday", "domain"},
    {"writing-partner", "Writing Partner", "everyday", "domain"},
    {"concise", "Concise", "meta", "format"},
    {"step-by-step", "Step by Step", "meta", "format"},
    {"devils-advocate", "Devil's Advocate", "meta", "analysis"},
    {"explain-simply", "Explain Simply", "meta", "format"},
    {"supportive", "Supportive", "meta", "tone"},
    {"orvane-help", "Orvane Help", "meta", "domain"},
}};

bool isBuiltInId(std::string_view id) {
  return std::any_of(builtInAugments.begin(), builtInAugments.end(),
                     [id](const BuiltInAugment& augment) { return augment.id == id; });
}

std::string_view withoutQuotes(std::string_view value) {
  while (value.starts_with('"')) value.remove_prefix(1);
  while (value.ends_with('"')) value.remove_suffix(1);
  return value;
}

using FrontMatter = std::map<std::string_view, std::string_view>;

/// The pairs between the marks of `text`, which the result points into; nothing if a mark is missing.
std::optional<FrontMatter> parseFrontMatter(std::string_view text) {
  constexpr std::string_view openingMark = "---";
  // The rest of either mark's line does not matter, which also lets files with CR LF lines pass.
  constexpr std::string_view closingMark = "\n---";
  text = trimBlanksAndNewlines(text);
  if (!text.starts_with(openingMark)) return std::nullopt;
  text.remove_prefix(openingMark.size());
  const std::size_t end = text.find(closingMark);
  if (end == std::string_view::npos) return std::nullopt;

  FrontMatter pairs;
  for (const std::string_view wholeLine : splitLines(text.substr(0, end))) {
    const std::string_view line = trimBlanks(wholeLine);
    const std::size_t colon = line.find(':');
    if (colon == std::string_view::npos) continue;
    const std::string_view key = trimBlanks(line.substr(0, colon));
    const std::string_view value = withoutQuotes(trimBlanks(line.substr(colon + 1)));
    if (!key.empty() && !value.empty()) pairs[key] = value;
  }
  return pairs;
}

/// Whether the name of a directory entry is that of an augment file: its extension is "md", and it is text.
bool isAugmentFileName(std::string_view name) {
  constexpr std::string_view suffix = ".md";
  return name.size() > suffix.size() && name.ends_with(suffix) && isValidUTF8(name);
}

std::string augmentId(std::string_view fileName) { return lowercased(fileName.substr(0, fileName.rfind('.'))); }

std::vector<CatalogAugment> loadUserAugments() {
  const std::string directory = configurationPath("augments");
  std::vector<std::string> names = listDirectory(directory).value_or(std::vector<std::string>{});
  std::erase_if(names, [](const std::string& name) { return !isAugmentFileName(name); });
  std::sort(names.begin(), names.end());

  std::vector<CatalogAugment> augments;
  for (const std::string& name : names) {
    const std::string id = augmentId(name);
    if (isBuiltInId(id)) continue;
    const std::optional<std::string> text = readTextFile(joinPath(directory, name));
    if (!text) continue;
    if (std::optional<CatalogAugment> augment = parseUserAugment(*text, id)) augments.push_back(*std::move(augment));
  }
  return augments;
}

/// The built-in augments, then the user's.
std::vector<CatalogAugment> loadCatalogue() {
  std::vector<CatalogAugment> catalogue;
  catalogue.reserve(builtInAugments.size());
  for (const BuiltInAugment& augment : builtInAugments) {
    catalogue.push_back({.id = std::string(augment.id),
                         .name = std::string(augment.name),
                         .category = std::string(augment.category),
                         .axis = std::string(augment.axis),
                         .isBuiltIn = true});
  }
  for (CatalogAugment& augment : loadUserAugments()) catalogue.push_back(std::move(augment));
  return catalogue;
}

std::set<std::string> readActiveIds() {
  const std::vector<std::string> ids = platform::preferencesStringArray(ORVANE_APPLICATION_ID, "augments.active");
  return {ids.begin(), ids.end()};
}

std::int64_t checkedSum(std::int64_t left, std::int64_t right) {
  std::int64_t sum = 0;
  if (__builtin_add_overflow(left, right, &sum)) std::abort();
  return sum;
}

JSON augmentObject(const CatalogAugment& augment) {
  return JSON::Object{{"id", augment.id},     {"name", augment.name},           {"category", augment.category},
                      {"axis", augment.axis}, {"isBuiltIn", augment.isBuiltIn}, {"slotCost", augment.slotCost}};
}

}  // namespace

std::optional<CatalogAugment> parseUserAugment(std::string_view text, const std::string& id) {
  const std::optional<FrontMatter> pairs = parseFrontMatter(text);
  if (!pairs) return std::nullopt;
  const auto valueOr = [&pairs](std::string_view key, std::string fallback) {
    const auto found = pairs->find(key);
    return found == pairs->end() ? std::move(fallback) : std::string(found->second);
  };
  return CatalogAugment{.id = id,
                        .name = valueOr("name", capitalized(id)),
                        .category = valueOr("category", "meta"),
                        .axis = valueOr("axis", "domain")};
}

std::string ListAugmentsTool::description() {
  return "List active and available augments along with the shared slot budget. Augments are short directives that "
         "shape assistant behavior." +
         configurationNotice();
}

const JSON& ListAugmentsTool::inputSchema() { return emptyInputSchema(); }

JSON ListAugmentsTool::call(const JSON::Object&) {
  const std::set<std::string> activeIds = readActiveIds();
  std::set<std::string> orphanIds = activeIds;
  JSON::Array active;
  JSON::Array available;
  std::int64_t slotsUsed = 0;
  for (const CatalogAugment& augment : loadCatalogue()) {
    JSON object = augmentObject(augment);
    if (activeIds.contains(augment.id)) {
      active.push_back(object);
      slotsUsed = checkedSum(slotsUsed, augment.slotCost);
      orphanIds.erase(augment.id);
    }
    available.push_back(std::move(object));
  }
  return JSON::Object{{"active", std::move(active)},
                      {"available", std::move(available)},
                      {"slotsUsedByAugments", slotsUsed},
                      {"slotsTotal", slotsTotal},
                      {"orphanActiveIds", JSON::Array(orphanIds.begin(), orphanIds.end())}};
}

}  // namespace orvane
