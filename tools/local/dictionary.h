// The user's dictionary overlay, answered from the application's replacements.txt.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/json.h"

namespace orvane {

/// What the overlay file holds, in file order, repeated entries included.
struct ReplacementsOverlay {
  struct Pair {
    std::string spoken;
    std::string written;
    bool operator==(const Pair&) const = default;
  };
  std::vector<Pair> additions;
  std::vector<std::string> fillers;
  std::vector<std::string> corrections;
  std::vector<std::string> disabled;
  bool operator==(const ReplacementsOverlay&) const = default;
};

/// Reads the text of an overlay file. Lines that say nothing are skipped one by one; nothing fails.
ReplacementsOverlay parseReplacementsOverlay(std::string_view text);

/// list_dictionary: the overlay's entries. Reads the file on every call; a missing or undecodable file is an empty one.
struct ListReplacementsTool {
  static constexpr std::string_view name = "list_dictionary";
  static std::string description();
  static const JSON& inputSchema();
  static JSON call(const JSON::Object& arguments);
};

}  // namespace orvane
