// What an agent is told of each tool, compared with the file of its name in tests/snapshots. A change of a text or a
// schema shows there as a difference to review. With ORVANE_REWRITE_SNAPSHOTS=1 in the environment the files are made
// anew before they are compared; script/snapshots does that.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <set>
#include <string>
#include <string_view>

#include "core/json_writer.h"
#include "tests/support/fake_platform.h"
#include "tests/support/file_content.h"
#include "tools/all_tools.h"
#include "tools/documentation.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view remedy = "To make the snapshots anew, run script/snapshots and review the difference.";

const fs::path snapshotDirectory = ORVANE_SNAPSHOT_DIRECTORY;

fs::path snapshotFile(const ToolHandle& tool) { return snapshotDirectory / (std::string(tool.name) + ".json"); }

/// What tools/list says of `tool`, the hints apart, for a user whose documentation is in a fixed place.
std::string snapshotOf(const ToolHandle& tool) {
  fakePlatform().applicationSupport = "/Users/someone/Library/Application Support";
  return writePrettyJSON(JSON::Object{
             {"name", tool.name}, {"description", tool.description()}, {"inputSchema", tool.inputSchema()}}) +
         "\n";
}

class ToolSnapshotTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    const char* rewrite = std::getenv("ORVANE_REWRITE_SNAPSHOTS");
    if (rewrite == nullptr || std::string_view(rewrite) != "1") return;
    fs::remove_all(snapshotDirectory);
    for (const ToolHandle& tool : allTools()) writeFile(snapshotFile(tool), snapshotOf(tool));
  }

 private:
  FakeHome home_;
};

TEST_F(ToolSnapshotTest, EachToolIsAsItsSnapshotShows) {
  for (const ToolHandle& tool : allTools()) {
    if (!fs::exists(snapshotFile(tool))) {
      ADD_FAILURE() << tool.name << " has no snapshot. " << remedy;
      continue;
    }
    EXPECT_EQ(readFile(snapshotFile(tool)), snapshotOf(tool)) << tool.name << " has changed. " << remedy;
  }
}

TEST_F(ToolSnapshotTest, EachSnapshotIsOfATool) {
  std::set<fs::path> files;
  for (const ToolHandle& tool : allTools()) files.insert(snapshotFile(tool));
  ASSERT_TRUE(fs::is_directory(snapshotDirectory)) << "there are no snapshots. " << remedy;
  for (const fs::directory_entry& entry : fs::directory_iterator(snapshotDirectory)) {
    EXPECT_TRUE(files.contains(entry.path())) << entry.path() << " belongs to no tool. " << remedy;
  }
}

}  // namespace
}  // namespace orvane::test
