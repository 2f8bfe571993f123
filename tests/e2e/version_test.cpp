// The version look-up, with copies of the program in made-up bundles.
#include <filesystem>

#include "tests/support/file_content.h"
#include "tests/support/server_test.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;

class VersionTest : public ServerTest {
 protected:
  std::string place(const std::string& path) const { return home_.root() + "/" + path; }

  std::string copyProgram(const std::string& path) const {
    fs::create_directories(fs::path(place(path)).parent_path());
    fs::copy_file(ORVANE_MCP_PROGRAM, place(path));
    return place(path);
  }

  std::string version(const Launch& launch) {
    auto server = start(launch);
    const Json initialized = server->request(R"({"id":1,"method":"initialize"})");
    const std::string announced(initialized.at("result").at("serverInfo").at("version").as_string());
    const Json result = toolResult(server->request(toolCall("orvane_version", R"({"any":1})")));
    EXPECT_EQ(result, Json(boost::json::object{{"version", announced}}));
    expectCleanEnd(*server);
    return announced;
  }

  std::string version(const std::string& program) {
    Launch launch;
    launch.program = program;
    return version(launch);
  }
};

TEST_F(VersionTest, TheBundleComesFirst) {
  const std::string program = copyProgram("App.app/Contents/MacOS/orvane-mcp");
  writeFile(place("App.app/Contents/MacOS/VERSION"), "beside");
  EXPECT_EQ(version(program), "beside");
  writeFile(place("App.app/Contents/Resources/VERSION"), " \t2.4.1 \n\n");
  EXPECT_EQ(version(program), "2.4.1");
}

TEST_F(VersionTest, TrimmedAndOtherwiseUnchanged) {
  const std::string program = copyProgram("bin/orvane-mcp");
  writeFile(place("bin/VERSION"), "v1.2.3");
  EXPECT_EQ(version(program), "v1.2.3");
  writeFile(place("bin/VERSION"), "\u00a0\u2003\r\n1 2\n3/\"\u00e9\u2028\u0085");
  EXPECT_EQ(version(program), "1 2\n3/\"\u00e9");
}

TEST_F(VersionTest, LinksAreResolvedInTheWholePath) {
  copyProgram("App.app/Contents/Helpers/orvane-mcp");
  writeFile(place("App.app/Contents/Resources/VERSION"), "3.0");
  fs::create_directories(place("links"));
  fs::create_symlink(place("App.app/Contents/Helpers/orvane-mcp"), place("links/tool"));
  fs::create_directory_symlink("../App.app/Contents/Helpers", place("links/directory"));
  fs::create_symlink("tool", place("links/again"));
  EXPECT_EQ(version(place("links/tool")), "3.0");
  EXPECT_EQ(version(place("links/directory/orvane-mcp")), "3.0");
  EXPECT_EQ(version(place("links/again")), "3.0");
}

TEST_F(VersionTest, UnusableFilesAreSkipped) {
  const std::string program = copyProgram("a/b/c/orvane-mcp");
  writeFile(place("a/VERSION"), "found");
  writeFile(place("a/b/Resources/VERSION"), " \n\t ");
  writeFile(place("a/b/c/VERSION"), "1.0\xff");
  fs::create_directories(place("a/b/VERSION"));
  EXPECT_EQ(version(program), "found");
  fs::remove(place("a/b/Resources/VERSION"));
  writeFile(place("a/b/c/VERSION"), "");
  EXPECT_EQ(version(program), "found");
  fs::remove(place("a/b/c/VERSION"));
  EXPECT_EQ(version(program), "found");
}

TEST_F(VersionTest, FiveAncestorsAreSearched) {
  const std::string program = copyProgram("0/1/2/3/4/5/6/orvane-mcp");
  writeFile(place("0/VERSION"), "too far");
  writeFile(place("VERSION"), "much too far");
  EXPECT_EQ(version(program), "0.0.0-dev");
  writeFile(place("0/1/VERSION"), "far");
  EXPECT_EQ(version(program), "far");
  writeFile(place("0/1/2/3/VERSION"), "nearer");
  EXPECT_EQ(version(program), "nearer");
  writeFile(place("0/1/2/3/4/5/6/VERSION"), "nearest");
  EXPECT_EQ(version(program), "nearest");
}

TEST_F(VersionTest, TheFirstArgumentCountsAndNotTheFile) {
  copyProgram("real/bin/orvane-mcp");
  writeFile(place("real/bin/VERSION"), "wrong");
  writeFile(place("told/bin/VERSION"), "told");
  Launch launch;
  launch.program = place("real/bin/orvane-mcp");
  launch.argumentZero = place("told/bin/whatever");
  EXPECT_EQ(version(launch), "told");
  launch.argumentZero = "bin/whatever";
  launch.workingDirectory = place("told");
  EXPECT_EQ(version(launch), "told");
  launch.argumentZero = "whatever";
  launch.workingDirectory = place("told/bin");
  EXPECT_EQ(version(launch), "told");
  launch.argumentZero = "../../real/./bin/orvane-mcp";
  EXPECT_EQ(version(launch), "wrong");
}

TEST_F(VersionTest, TheRootEndsTheSearch) {
  Launch launch;
  launch.argumentZero = "/orvane-mcp";
  EXPECT_EQ(version(launch), "0.0.0-dev");
}

TEST_F(VersionTest, TheFirstAnswerIsKept) {
  Launch launch;
  launch.program = copyProgram("bin/orvane-mcp");
  writeFile(place("bin/VERSION"), "1");
  auto server = start(launch);
  EXPECT_EQ(toolResult(server->request(toolCall("orvane_version"))), parseJson(R"({"version":"1"})"));
  writeFile(place("bin/VERSION"), "2");
  EXPECT_EQ(toolResult(server->request(toolCall("orvane_version"))), parseJson(R"({"version":"1"})"));
  const Json initialized = server->request(R"({"id":1,"method":"initialize"})");
  EXPECT_EQ(initialized.at("result").at("serverInfo").at("version"), Json("1"));
  expectCleanEnd(*server);
}

}  // namespace
}  // namespace orvane::test
