#include "standin/instant.h"

#include <gtest/gtest.h>

namespace orvane::standin {
namespace {

TEST(InstantTest, ReadsIso8601) {
  EXPECT_EQ(parseInstant("2026-06-01T09:30:00+02:00"), parseInstant("2026-06-01T07:30:00.25Z"));
  EXPECT_EQ(formatInstant(parseInstant("2026-06-01T07:30:00Z").value()), "2026-06-01T07:30:00Z");
  EXPECT_EQ(parseInstant("2026-06-01"), parseInstant("2026-06-01T00:00"));
  for (const char* bad : {"", "2026-02-30", "2026-6-1", "2026-06-01T", "2026-06-01T25:00Z", "2026-06-01Z"}) {
    EXPECT_EQ(parseInstant(bad), std::nullopt) << bad;
  }
}

}  // namespace
}  // namespace orvane::standin
