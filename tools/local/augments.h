// The augment catalogue: the built-in augments, the user's own files, and which of them the application has active.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "core/json.h"

namespace orvane {

struct CatalogAugment {
  std::string id;        ///< lower case
  std::string name;      ///< for display
  std::string category;  ///< "engineering", "design", "everyday", "meta" or what a user's file says
  std::string axis;      ///< "domain", "format", "tone", "analysis" or what a user's file says
  bool isBuiltIn = false;
  std::int64_t slotCost = 1;
  bool operator==(const CatalogAugment&) const = default;
};

/// The augment that a user's file with the given text describes; nothing if its front matter is not well formed.
std::optional<CatalogAugment> parseUserAugment(std::string_view text, const std::string& id);

/// list_augments: active and available augments and the slots they use. Reads its sources on every call; a missing or
/// unreadable one counts as empty.
struct ListAugmentsTool {
  static constexpr std::string_view name = "list_augments";
  static std::string description();
  static const JSON& inputSchema();
  static JSON call(const JSON::Object& arguments);
};

}  // namespace orvane
