#include "tests/standin/application_support.h"
#include "tests/support/fake_platform.h"

namespace orvane::standin {
namespace {

using SlateMethodsTest = StandinTest;

TEST_F(SlateMethodsTest, SavesOnlyWhatIsOpenAndNotEmpty) {
  test::FakeHome home;
  EXPECT_EQ(refusal("slate_save"), "validation_failed: the slate window is not open");
  EXPECT_TRUE(flagIn(call("slate_open"), "open"));
  EXPECT_EQ(textIn(call("slate_save"), "path"), home.file("Documents/Vault/Launch brief.md"));
  EXPECT_EQ(textIn(call("slate_save", R"({"name":"other"})"), "filename"), "other.md");
  EXPECT_EQ(refusal("slate_save", R"({"name":"../x"})"),
            R"(validation_failed: not a file name: "../x" {"argument":"name"})");
  EXPECT_TRUE(flagIn(call("slate_clear"), "cleared"));
  EXPECT_FALSE(flagIn(call("slate_clear"), "cleared", true));
  EXPECT_EQ(refusal("slate_save"), "validation_failed: the slate is empty");
}

TEST_F(SlateMethodsTest, ClosingKeepsTheArtifact) {
  call("slate_open");
  call("slate_close");
  EXPECT_FALSE(flagIn(call("get_slate"), "open", true));
  EXPECT_EQ(integerIn(call("get_slate"), "blockCount"), 3);
  EXPECT_EQ(textIn(call("get_slate"), "artifact").find("<!-- block:b1 -->\n# Launch brief"), 0U);
}

TEST_F(SlateMethodsTest, FrontmatterKeepsOrderAndRefusesReservedKeys) {
  call("slate_open");
  call("slate_set_frontmatter", R"({"key":"status","value":"final"})");
  EXPECT_TRUE(flagIn(call("slate_set_frontmatter", R"({"key":"owner","value":"Ada"})"), "added"));
  EXPECT_EQ(writeCompactJSON(objectIn(call("get_slate"), "frontmatter")),
            R"({"status":"final","tags":"launch, pricing","owner":"Ada"})");
  for (const std::string key : {"title", "created", "updated", "lumen_blocks", "source"}) {
    EXPECT_EQ(refusal("slate_set_frontmatter", R"({"key":")" + key + R"(","value":""})")
                  .find("validation_failed: reserved key: " + key),
              0U);
  }
  EXPECT_EQ(refusal("slate_remove_frontmatter", R"({"key":"x"})"),
            R"(validation_failed: unknown key: x {"keys":["status","tags","owner"]})");
  call("slate_remove_frontmatter", R"({"key":"tags"})");
  EXPECT_EQ(objectIn(call("get_slate"), "frontmatter").size(), 2U);
}

TEST_F(SlateMethodsTest, RoutingIsRemembered) {
  call("slate_set_routing", R"({"enabled":false})");
  EXPECT_FALSE(flagIn(call("slate_open"), "routingEnabled", true));
}

TEST_F(SlateMethodsTest, FileChunksAreCountedInCharacters) {
  const std::string path = R"({"path":"/Users/demo/Documents/figures.md")";
  const JSON::Object chunk = call("read_open_file", path + R"(,"offset":11,"limit":5})");
  EXPECT_EQ(textIn(chunk, "content"), "Café ");
  EXPECT_EQ(integerIn(chunk, "returnedChars"), 5);
  EXPECT_EQ(integerIn(call("read_open_file", path + R"(,"offset":99999})"), "returnedChars"), 0);
  EXPECT_EQ(refusal("read_open_file", R"({"path":"/x"})"),
            R"(validation_failed: unknown path {"openPaths":["/Users/demo/Documents/figures.md",)"
            R"("/Users/demo/Documents/large-report.pdf"]})");
  EXPECT_EQ(refusal("read_open_file", R"({"path":"/Users/demo/Documents/large-report.pdf"})")
                .find("validation_failed: not loaded yet"),
            0U);
}

}  // namespace
}  // namespace orvane::standin
