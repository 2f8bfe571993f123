// The dictionary overlay: every entry is a trimmed, non-empty piece of one of the text's lines.
#include <string>
#include <string_view>
#include <vector>

#include "core/text.h"
#include "fuzz/require.h"
#include "tools/local/dictionary.h"

namespace {

using orvane::fuzz::require;

void checkEntry(const std::string& entry, std::string_view text) {
  require(!entry.empty(), "no entry is empty");
  require(orvane::trimBlanks(entry) == entry, "entries are trimmed");
  require(text.find(entry) != std::string_view::npos, "entries come from the text");
  require(orvane::splitLines(entry).size() == 1, "an entry is part of one line");
}

void checkList(const std::vector<std::string>& list, std::string_view text) {
  for (const std::string& entry : list) {
    checkEntry(entry, text);
    require(entry.find(',') == std::string::npos, "a list is split at its commas");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const orvane::ReplacementsOverlay overlay = orvane::parseReplacementsOverlay(text);
  for (const auto& [spoken, written] : overlay.additions) {
    checkEntry(spoken, text);
    checkEntry(written, text);
    require(spoken.find("->") == std::string::npos, "the first arrow separates");
    require(spoken.find(',') == std::string::npos, "spoken phrases are split at their commas");
  }
  checkList(overlay.fillers, text);
  checkList(overlay.corrections, text);
  checkList(overlay.disabled, text);
  return 0;
}
