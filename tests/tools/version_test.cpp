#include "tools/local/version.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "core/json_writer.h"
#include "tests/support/fake_platform.h"
#include "tests/support/file_content.h"
#include "tools/documentation.h"

namespace orvane::test {
namespace {

constexpr const char* unknown = "0.0.0-dev";

class FindVersionTest : public testing::Test {
 protected:
  void SetUp() override { writeFile(program(), "program"); }

  /// A path in the bundle's directory, deep enough that nothing outside the test's home is searched.
  std::string bundle(const std::string& name) const { return home_.file("1/2/3/4/5/6/7/8/Orvane.app/" + name); }
  std::string program() const { return bundle("Contents/MacOS/orvane-mcp"); }

  FakeHome home_;
};

TEST_F(FindVersionTest, NothingThereIsTheDevelopmentVersion) { EXPECT_EQ(findVersion(program()), unknown); }

TEST_F(FindVersionTest, TheBundlesFileIsTrimmed) {
  writeFile(bundle("Contents/Resources/VERSION"), "  2.4.1 \t\n");
  EXPECT_EQ(findVersion(program()), "2.4.1");
  writeFile(bundle("Contents/Resources/VERSION"), "\xC2\xA0\xE2\x80\xA8v1.2.3 beta\r\n\xE3\x80\x80");
  EXPECT_EQ(findVersion(program()), "v1.2.3 beta");
}

TEST_F(FindVersionTest, TheBundleComesBeforeTheProgramsDirectory) {
  writeFile(bundle("Contents/MacOS/VERSION"), "own");
  writeFile(bundle("Contents/VERSION"), "parent");
  EXPECT_EQ(findVersion(program()), "own");
  writeFile(bundle("Contents/Resources/VERSION"), "bundle");
  EXPECT_EQ(findVersion(program()), "bundle");
}

TEST_F(FindVersionTest, WhatHoldsNoTextIsSkipped) {
  writeFile(bundle("VERSION"), "three above");
  for (const char* content : {"", " \n\t ", "\xFF", "1.2\xC3", "\xC2\x85"}) {
    writeFile(bundle("Contents/Resources/VERSION"), content);
    EXPECT_EQ(findVersion(program()), "three above");
  }
  std::filesystem::remove(bundle("Contents/Resources/VERSION"));
  std::filesystem::create_directories(bundle("Contents/Resources/VERSION"));
  std::filesystem::create_directories(bundle("Contents/MacOS/VERSION"));
  EXPECT_EQ(findVersion(program()), "three above") << "a directory";
}

TEST_F(FindVersionTest, FiveAncestorsAreSearched) {
  // The program's directory is MacOS; its fifth ancestor is 6, its sixth 5.
  writeFile(home_.file("1/2/3/4/5/VERSION"), "too far");
  EXPECT_EQ(findVersion(program()), unknown);
  writeFile(home_.file("1/2/3/4/5/6/VERSION"), "fifth");
  EXPECT_EQ(findVersion(program()), "fifth");
  writeFile(home_.file("a/b/c/d/e/f/program"), "");
  writeFile(home_.file("a/VERSION"), "fifth");
  EXPECT_EQ(findVersion(home_.file("a/b/c/d/e/f/program")), "fifth");
  EXPECT_EQ(findVersion(home_.file("a/b/c/d/e/f/g/program")), unknown);
}

TEST_F(FindVersionTest, LinksAreFollowedInTheWholePath) {
  writeFile(bundle("Contents/Resources/VERSION"), "2.4.1");
  std::filesystem::create_directories(home_.file("x/1/2/3/4/5/bin"));
  std::filesystem::create_symlink(program(), home_.file("x/1/2/3/4/5/bin/orvane-mcp"));
  EXPECT_EQ(findVersion(home_.file("x/1/2/3/4/5/bin/orvane-mcp")), "2.4.1");
  std::filesystem::create_symlink(bundle("Contents/MacOS"), home_.file("x/1/2/3/4/5/linked"));
  EXPECT_EQ(findVersion(home_.file("x/1/2/3/4/5/linked/orvane-mcp")), "2.4.1");
  std::filesystem::create_symlink("bin/orvane-mcp", home_.file("x/1/2/3/4/5/second"));
  EXPECT_EQ(findVersion(home_.file("x/1/2/3/4/5/second")), "2.4.1");
}

TEST_F(FindVersionTest, RelativePathsAreMeantFromTheWorkingDirectory) {
  writeFile(bundle("Contents/Resources/VERSION"), "2.4.1");
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(bundle("Contents"));
  EXPECT_EQ(findVersion("MacOS/orvane-mcp"), "2.4.1");
  EXPECT_EQ(findVersion("./MacOS/../MacOS/orvane-mcp"), "2.4.1");
  std::filesystem::current_path(bundle("Contents/MacOS"));
  EXPECT_EQ(findVersion("orvane-mcp"), "2.4.1");
  std::filesystem::current_path(before);
}

TEST_F(FindVersionTest, ALostWorkingDirectoryCountsAsTheRoot) {
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::create_directory(home_.file("lost"));
  std::filesystem::current_path(home_.file("lost"));
  std::filesystem::remove(home_.file("lost"));
  writeFile(home_.file("here/VERSION"), "2.4.1");
  // What follows the root is the way into the test's home.
  EXPECT_EQ(findVersion(home_.file("here/program").substr(1)), "2.4.1");
  EXPECT_EQ(findVersion(""), unknown);
  std::filesystem::current_path(before);
}

TEST_F(FindVersionTest, OddPathsNeverFail) {
  for (const std::string& path : {std::string("/"), std::string("/program"), std::string("//"), std::string("/a/b"),
                                  std::string("/\xFF/x"), "/" + std::string(5000, 'x')}) {
    EXPECT_EQ(findVersion(path), unknown) << path.substr(0, 20);
  }
}

// The system hands over an argv[0] of up to 128 KiB.
TEST_F(FindVersionTest, APathLongerThanAnyFileHasIsSearchedToo) {
  writeFile(home_.file("VERSION"), "1.2.3");
  std::string longTail;
  while (longTail.size() < 131000) longTail += "/a";
  EXPECT_EQ(findVersion(longTail), "0.0.0-dev");
  EXPECT_EQ(findVersion(home_.path() + longTail), "0.0.0-dev");
  EXPECT_EQ(findVersion(std::string(131000, 'a')), "0.0.0-dev");
}

TEST(OrvaneVersionToolTest, AnswersTheVersionAloneWhateverTheArguments) {
  const JSON expected = JSON::Object{{"version", applicationVersion()}};
  EXPECT_EQ(writeCompactJSON(OrvaneVersionTool::call({})), writeCompactJSON(expected));
  EXPECT_EQ(writeCompactJSON(OrvaneVersionTool::call({{"version", 5}})), writeCompactJSON(expected));
}

TEST(OrvaneVersionToolTest, TheVersionIsLookedUpOnce) {
  const FakeHome home;
  const std::string before = applicationVersion();
  writeFile(home.file("VERSION"), "9.9.9");
  setProgramPath(home.file("program"));
  EXPECT_EQ(applicationVersion(), before);
  EXPECT_NE(before, "9.9.9");
  setProgramPath("");
}

TEST(OrvaneVersionToolTest, DescribesItself) {
  EXPECT_EQ(OrvaneVersionTool::name, "orvane_version");
  EXPECT_EQ(OrvaneVersionTool::description(), "Return the running Orvane version." + configurationNotice());
  EXPECT_EQ(writeCompactJSON(OrvaneVersionTool::inputSchema()),
            R"({"type":"object","properties":{},"additionalProperties":false})");
}

}  // namespace
}  // namespace orvane::test
