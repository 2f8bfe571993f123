#include "core/user_paths.h"

#include <gtest/gtest.h>

#include "tests/support/fake_platform.h"

namespace orvane::test {
namespace {

TEST(UserPathsTest, ConfigurationLiesUnderThePlatformsHome) {
  const FakeHome home;
  EXPECT_EQ(configurationDirectory(), home.file(".config/orvane"));
  EXPECT_EQ(configurationPath("settings.json"), home.file(".config/orvane/settings.json"));
  fakePlatform().home = "/other";
  EXPECT_EQ(configurationPath("augments"), "/other/.config/orvane/augments");
  fakePlatform().home = "/";
  EXPECT_EQ(configurationDirectory(), "/.config/orvane");
}

TEST(UserPathsTest, TheEnvironmentHasNoSay) {
  const FakeHome home;
  const char* variable = getenv("HOME");
  const std::string before = variable == nullptr ? "" : variable;
  setenv("HOME", "/decoy", 1);
  EXPECT_EQ(configurationDirectory(), home.file(".config/orvane"));
  EXPECT_EQ(applicationSupportPath(), home.file("Library/Application Support"));
  setenv("HOME", before.c_str(), 1);
}

TEST(UserPathsTest, ApplicationSupportIsThePlatformsOrLiesUnderTheHome) {
  const FakeHome home;
  EXPECT_EQ(applicationSupportPath(), home.file("Library/Application Support"));
  fakePlatform().applicationSupport = "/support";
  EXPECT_EQ(applicationSupportPath(), "/support");
}

}  // namespace
}  // namespace orvane::test
