#include "core/paths.h"

#include <gtest/gtest.h>

namespace orvane::test {
namespace {

TEST(PathsTest, JoinPutsOneSlashBetween) {
  EXPECT_EQ(joinPath("/a", "b"), "/a/b");
  EXPECT_EQ(joinPath("/a/", "b"), "/a/b");
  EXPECT_EQ(joinPath("/", "b"), "/b");
  EXPECT_EQ(joinPath("/a", "b/c/"), "/a/b/c/");
  EXPECT_EQ(joinPath("", "b"), "/b");
}

TEST(PathsTest, ParentDropsTheLastComponent) {
  EXPECT_EQ(parentDirectory("/a/b"), "/a");
  EXPECT_EQ(parentDirectory("/a"), "/");
  EXPECT_EQ(parentDirectory("/"), "/");
  EXPECT_EQ(parentDirectory("a/b"), "a");
  EXPECT_EQ(parentDirectory("a"), "");
  EXPECT_EQ(parentDirectory(""), "");
}

}  // namespace
}  // namespace orvane::test
