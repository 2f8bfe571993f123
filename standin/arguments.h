// The arguments of one call, checked as a method asks for them. Arguments that no method asks for do no harm.
#pragma once

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

#include "core/json.h"

namespace orvane::standin {

/// Looks at `values`, which must outlive it. Whatever does not fit is a Refusal with validation_failed.
class Arguments {
 public:
  explicit Arguments(const JSON::Object& values) : values_(values) {}

  /// The string `key`, which must be there.
  std::string text(std::string_view key) const;
  /// The string `key`, if it is there.
  std::optional<std::string> optionalText(std::string_view key) const;

  /// The boolean `key`, which must be there.
  bool flag(std::string_view key) const;
  /// The boolean `key`, if it is there.
  std::optional<bool> optionalFlag(std::string_view key) const;

  /// The integer `key` moved into the range `lowest` to `highest`; `fallback` if it is not there.
  std::int64_t integer(std::string_view key, std::int64_t fallback, std::int64_t lowest, std::int64_t highest) const;

  /// The string `key`, which must be there and one of `allowed`.
  std::string choice(std::string_view key, std::initializer_list<std::string_view> allowed) const;
  /// The string `key`, if it is there, one of `allowed`.
  std::optional<std::string> optionalChoice(std::string_view key,
                                            std::initializer_list<std::string_view> allowed) const;

  /// Whether `key` is there.
  bool has(std::string_view key) const { return values_.find(key) != nullptr; }
  /// The strings in the array `key`; none if it is not there.
  std::vector<std::string> texts(std::string_view key) const;

 private:
  const JSON& required(std::string_view key) const;

  const JSON::Object& values_;
};

}  // namespace orvane::standin
