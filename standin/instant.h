// Points in time as callers write them.
#pragma once

#include <ctime>
#include <optional>
#include <string>
#include <string_view>

namespace orvane::standin {

/// The instant that `text` names: an ISO 8601 date and time, such as 2026-06-01T09:30:00Z, with an offset from UTC or
/// without one for local time; or a date alone, such as 2026-06-01, for the local midnight that begins it.
std::optional<std::time_t> parseInstant(std::string_view text);

/// `instant` as ISO 8601 in UTC, to the second.
std::string formatInstant(std::time_t instant);

}  // namespace orvane::standin
