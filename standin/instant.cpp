#include "standin/instant.h"

#include <algorithm>
#include <chrono>

namespace orvane::standin {

namespace {

// Takes pieces from the front of a text; once a piece does not fit, nothing fits any more.
class Cursor {
 public:
  explicit Cursor(std::string_view text) : rest_(text) {}

  // A number of exactly `digits` digits that is at most `highest`.
  int number(std::size_t digits, int highest) {
    int value = 0;
    for (; digits > 0; --digits) {
      if (rest_.empty() || rest_.front() < '0' || rest_.front() > '9') {
        fits_ = false;
        return 0;
      }
      value = value * 10 + (rest_.front() - '0');
      rest_.remove_prefix(1);
    }
    fits_ = fits_ && value <= highest;
    return value;
  }

  bool take(char expected) {
    if (rest_.empty() || rest_.front() != expected) return false;
    rest_.remove_prefix(1);
    return true;
  }

  void expect(char expected) { fits_ = take(expected) && fits_; }

  void skipDigits() { rest_.remove_prefix(std::min(rest_.find_first_not_of("0123456789"), rest_.size())); }

  bool atEnd() const { return rest_.empty(); }
  bool fits() const { return fits_; }

 private:
  std::string_view rest_;
  bool fits_ = true;
};

}  // namespace

std::optional<std::time_t> parseInstant(std::string_view text) {
  Cursor cursor(text);
  std::tm time{};
  time.tm_isdst = -1;
  const int year = cursor.number(4, 9999);
  cursor.expect('-');
  const int month = cursor.number(2, 12);
  cursor.expect('-');
  time.tm_mday = cursor.number(2, 31);
  const std::chrono::year_month_day day{std::chrono::year(year), std::chrono::month(static_cast<unsigned>(month)),
                                        std::chrono::day(static_cast<unsigned>(time.tm_mday))};
  if (!cursor.fits() || !day.ok()) return std::nullopt;
  time.tm_year = year - 1900;
  time.tm_mon = month - 1;
  if (cursor.atEnd()) return mktime(&time);

  if (!cursor.take(' ')) cursor.expect('T');
  time.tm_hour = cursor.number(2, 23);
  cursor.expect(':');
  time.tm_min = cursor.number(2, 59);
  if (cursor.take(':')) {
    time.tm_sec = cursor.number(2, 60);
    if (cursor.take('.')) cursor.skipDigits();
  }
  if (cursor.fits() && cursor.atEnd()) return mktime(&time);
  if (cursor.fits() && cursor.take('Z') && cursor.atEnd()) return timegm(&time);

  const bool ahead = cursor.take('+');
  if (!ahead) cursor.expect('-');
  const int hours = cursor.number(2, 23);
  cursor.take(':');
  const int minutes = cursor.number(2, 59);
  if (!cursor.fits() || !cursor.atEnd()) return std::nullopt;
  const std::time_t offset = (std::time_t{hours} * 60 + minutes) * 60;
  return timegm(&time) + (ahead ? -offset : offset);
}

std::string formatInstant(std::time_t instant) {
  std::tm time{};
  gmtime_r(&instant, &time);
  char text[sizeof "2026-06-01T09:30:00Z" + 8];
  return {text, std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &time)};
}

}  // namespace orvane::standin
