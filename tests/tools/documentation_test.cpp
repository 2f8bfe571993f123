#include "tools/documentation.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/fake_platform.h"

namespace orvane::test {
namespace {

TEST(DocumentationTest, FilesLieUnderTheApplicationSupportDirectory) {
  const FakeHome home;
  fakePlatform().applicationSupport = "/Users/a/Library/Application Support";
  EXPECT_EQ(docsPath(""), "/Users/a/Library/Application Support/Orvane/docs/");
  EXPECT_EQ(docsPath("slate.md"), "/Users/a/Library/Application Support/Orvane/docs/slate.md");
}

TEST(DocumentationTest, FilesLieUnderTheHomeWhereThereIsNone) {
  const FakeHome home;
  EXPECT_EQ(docsPath("INDEX.md"), home.file("Library/Application Support/Orvane/docs/INDEX.md"));
  fakePlatform().home = "/moved";
  EXPECT_EQ(docsPath("INDEX.md"), "/moved/Library/Application Support/Orvane/docs/INDEX.md") << "asked for each time";
}

TEST(DocumentationTest, ThePointerNamesTheFile) {
  const FakeHome home;
  fakePlatform().applicationSupport = "/d";
  EXPECT_EQ(docPointer("computer-open.md"),
            "\n\nFor user-facing details on this setting (when to use it, what it does, gotchas), read the doc at: "
            "/d/Orvane/docs/computer-open.md");
}

TEST(DocumentationTest, TheNoticeEndsAtTheIndex) {
  const FakeHome home;
  fakePlatform().applicationSupport = "/d";
  EXPECT_EQ(
      configurationNotice(),
      "\n\nIMPORTANT: Do NOT edit ~/.config/orvane/settings.json, replacements.txt, augment files, or any Orvane "
      "configuration file directly \xE2\x80\x94 direct edits race with the running app and corrupt state. To change "
      "settings, dictionary entries, augments, or the active persona, use Orvane's mutation tools (set_*, add_*, "
      "activate_*). If a needed mutation tool doesn't exist yet, ask the user to make the change in the Orvane "
      "Dashboard rather than reaching past the app to edit files.\n\nFor user-facing explanations of every Orvane "
      "feature (when to use it, what each setting does, gotchas), the index lives at: /d/Orvane/docs/INDEX.md");
}

}  // namespace
}  // namespace orvane::test
