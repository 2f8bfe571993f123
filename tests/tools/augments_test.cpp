// The list of augments: the built-in ones, the user's files, and which are active.
#include "tools/local/augments.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "core/json_writer.h"
#include "tests/support/fake_platform.h"
#include "tests/support/file_content.h"
#include "tools/documentation.h"
#include "tools/schema.h"

namespace orvane::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::string_view builtIns =
    R"({"id":"code-reviewer","name":"Code Reviewer","category":"engineering","axis":"domain","isBuiltIn":true,"slotCost":1},)"
    R"({"id":"qa-engineer","name":"QA Engineer","category":"engineering","axis":"domain","isBuiltIn":true,"slotCost":1},)"
    R"({"id":"security-auditor","name":"Security Auditor","category":"engineering","axis":"domain","isBuiltIn":true,"slotCost":1},)"
    R"({"id":"system-architect","name":"System Architect","category":"engineering","axis":"domain","isBuiltIn":true,"slotCost":1},)"
    R"({"id":"devops","name":"DevOps","category":"engineering","axis":"domain","isBuiltIn":true,"slotCost":1},)"
    R"({"id":"database-expert","name":"Database Expert","category":"engineering","axis":"domain","isBuiltIn":true,"slotCost":1},)"
    R"({"id":"ux-reviewer","name":"UX Reviewer","category":"design","axis":"domain","isBuiltIn":true,"slotCost":1},)"
    R"({"id":"copy-editor","name":"Copy Editor","category":"design","axis":"domain","isBuiltIn":true,"slotCost":1},)"
    R"({"id":"accessibility-checker","name":"Accessibility Checker","category":"design","axis":"domain","isBuiltIn":true,"slotCost":1},)"
    R"({"id":"recipe-helper","name":"Recipe Helper","category":"everyday","axis":"domain","isBuiltIn":true,"slotCost":1},)"
    R"({"id":"travel-planner","name":"Travel Planner","category":"everyday","axis":"domain","isBuiltIn":true,"slotCost":1},)"
    R"({"id":"fitness-coach","name":"Fitness Coach","category":"everyday","axis":"domain","isBuiltIn":true,"slotCost":1},)"
    R"({"id":"study-buddy","name":"Study Buddy","category":"everyday","axis":"domain","isBuiltIn":true,"slotCost":1},)"
    R"({"id":"writing-partner","name":"Writing Partner","category":"everyday","axis":"domain","isBuiltIn":true,"slotCost":1},)"
    R"({"id":"concise","name":"Concise","category":"meta","axis":"format","isBuiltIn":true,"slotCost":1},)"
    R"({"id":"step-by-step","name":"Step by Step","category":"meta","axis":"format","isBuiltIn":true,"slotCost":1},)"
    R"({"id":"devils-advocate","name":"Devil's Advocate","category":"meta","axis":"analysis","isBuiltIn":true,"slotCost":1},)"
    R"({"id":"explain-simply","name":"Explain Simply","category":"meta","axis":"format","isBuiltIn":true,"slotCost":1},)"
    R"({"id":"supportive","name":"Supportive","category":"meta","axis":"tone","isBuiltIn":true,"slotCost":1},)"
    R"({"id":"orvane-help","name":"Orvane Help","category":"meta","axis":"domain","isBuiltIn":true,"slotCost":1})";

constexpr std::size_t builtInCount = 20;

/// The strings under `key` of each object of the array under `list` in `result`.
std::vector<std::string> stringsOf(const JSON& result, std::string_view list, std::string_view key) {
  std::vector<std::string> strings;
  for (const JSON& element : *result.asObject()->find(list)->asArray()) {
    strings.push_back(*element.asObject()->find(key)->asString());
  }
  return strings;
}

/// The user's part of the catalogue: the strings under `key` of what stands after the built-in augments.
std::vector<std::string> usersOwn(std::string_view key) {
  std::vector<std::string> strings = stringsOf(ListAugmentsTool::call({}), "available", key);
  EXPECT_GE(strings.size(), builtInCount);
  strings.erase(strings.begin(), strings.begin() + builtInCount);
  return strings;
}

class ListAugmentsToolTest : public testing::Test {
 protected:
  std::string file(const std::string& name) const { return home_.configurationFile("augments/" + name); }
  void write(const std::string& name, const std::string& text = "---\n---\n") const { writeFile(file(name), text); }
  void activate(std::vector<std::string> ids) const {
    fakePlatform().preferences[{ORVANE_APPLICATION_ID, "augments.active"}] = std::move(ids);
  }

  FakeHome home_;
};

TEST_F(ListAugmentsToolTest, WithoutFilesAndActiveIdsThereAreTheBuiltInAugments) {
  const std::string expected = R"({"active":[],"available":[)" + std::string(builtIns) +
                               R"(],"slotsUsedByAugments":0,"slotsTotal":5,"orphanActiveIds":[]})";
  EXPECT_EQ(writeCompactJSON(ListAugmentsTool::call({})), expected);
  EXPECT_EQ(writeCompactJSON(ListAugmentsTool::call({{"active", true}})), expected);
  std::filesystem::create_directories(file(""));
  EXPECT_EQ(writeCompactJSON(ListAugmentsTool::call({})), expected);
}

TEST_F(ListAugmentsToolTest, ReportsActiveAndOrphanIds) {
  write("Poet.md", "---\nname: The Poet\ncategory: art\naxis: tone\n---\n");
  activate({"zebra", "poet", "concise", "poet", "Concise", "gone"});
  const std::string poet =
      R"({"id":"poet","name":"The Poet","category":"art","axis":"tone","isBuiltIn":false,"slotCost":1})";
  EXPECT_EQ(
      writeCompactJSON(ListAugmentsTool::call({})),
      R"({"active":[{"id":"concise","name":"Concise","category":"meta","axis":"format","isBuiltIn":true,"slotCost":1},)" +
          poet + R"(],"available":[)" + std::string(builtIns) + "," + poet +
          R"(],"slotsUsedByAugments":2,"slotsTotal":5,"orphanActiveIds":["Concise","gone","zebra"]})");
}

TEST_F(ListAugmentsToolTest, MoreAugmentsThanSlotsAreReportedAsTheyAre) {
  activate({"concise", "devops", "supportive", "qa-engineer", "copy-editor", "orvane-help"});
  const JSON result = ListAugmentsTool::call({});
  EXPECT_EQ(result.asObject()->find("slotsUsedByAugments")->asInteger(), 6);
  EXPECT_THAT(stringsOf(result, "active", "id"),
              ElementsAre("qa-engineer", "devops", "copy-editor", "concise", "supportive", "orvane-help"));
  EXPECT_EQ(stringsOf(result, "available", "id").size(), builtInCount);
}

TEST_F(ListAugmentsToolTest, ActiveIdsOfOtherDomainsAndKeysDoNotCount) {
  fakePlatform().preferences[{"com.example.Other", "augments.active"}] = {"concise"};
  fakePlatform().preferences[{ORVANE_APPLICATION_ID, "augments"}] = {"concise"};
  EXPECT_THAT(stringsOf(ListAugmentsTool::call({}), "active", "id"), IsEmpty());
}

TEST_F(ListAugmentsToolTest, EverySourceIsReadAfresh) {
  EXPECT_THAT(usersOwn("id"), IsEmpty());
  write("a.md");
  EXPECT_THAT(usersOwn("id"), ElementsAre("a"));
  write("a.md", "no front matter");
  EXPECT_THAT(usersOwn("id"), IsEmpty());
  activate({"a"});
  EXPECT_EQ(*ListAugmentsTool::call({}).asObject()->find("orphanActiveIds"), (JSON::Array{"a"}));
}

TEST_F(ListAugmentsToolTest, FilesAreInTheOrderOfTheirWholeNamesBeforeLowerCasing) {
  for (const std::string name : {"a.md", "a-b.md", "b.md", "Z.md", "_.md", "ä.md", "aa.md", "\uFFFD.md", "😀.md"}) {
    write(name);
  }
  EXPECT_THAT(usersOwn("id"), ElementsAre("z", "_", "a-b", "a", "aa", "b", "ä", "\uFFFD", "😀"));
}

TEST_F(ListAugmentsToolTest, NamesThatDifferOnlyInCaseBothAppear) {
  write("Poet.md", "---\nname: A\n---");
  write("poet.md", "---\nname: B\n---");
  EXPECT_THAT(usersOwn("id"), ElementsAre("poet", "poet"));
  EXPECT_THAT(usersOwn("name"), ElementsAre("A", "B"));
  activate({"poet"});
  EXPECT_EQ(ListAugmentsTool::call({}).asObject()->find("slotsUsedByAugments")->asInteger(), 2);
}

TEST_F(ListAugmentsToolTest, BuiltInIdsWinInAnyCase) {
  for (const std::string name : {"concise.md", "Concise.md", "CONCISE.md", "Devils-Advocate.md"}) {
    write(name, "---\nname: Mine\n---");
  }
  EXPECT_THAT(usersOwn("id"), IsEmpty());
}

TEST_F(ListAugmentsToolTest, OnlyTheExtensionMdCounts) {
  for (const std::string name :
       {"a.MD", "b.Md", "c.markdown", "d.mdx", "e", "md", "f.md.txt", "g.md~", "h.md ", ".md"}) {
    write(name);
  }
  EXPECT_THAT(usersOwn("id"), IsEmpty());
}

TEST_F(ListAugmentsToolTest, NamesMayHoldDotsBlanksAndBeHidden) {
  for (const std::string name : {".hidden.md", "a.b.md", "my own.md", "v1.md.md"}) write(name);
  EXPECT_THAT(usersOwn("id"), ElementsAre(".hidden", "a.b", "my own", "v1.md"));
  EXPECT_THAT(usersOwn("name"), ElementsAre(".Hidden", "A.B", "My Own", "V1.Md"));
}

TEST_F(ListAugmentsToolTest, SubdirectoriesAreNotSearched) {
  write("inner/a.md");
  EXPECT_THAT(usersOwn("id"), IsEmpty());
}

TEST_F(ListAugmentsToolTest, WhatCannotBeReadIsSkippedAlone) {
  write("a.md");
  write("z.md");
  std::filesystem::create_directory(file("directory.md"));
  ASSERT_EQ(mkfifo(file("fifo.md").c_str(), 0600), 0);
  std::filesystem::create_symlink(home_.file("gone"), file("dangling.md"));
  std::filesystem::create_symlink(file("loop.md"), file("loop.md"));
  std::filesystem::create_symlink("/dev/zero", file("device.md"));
  write("latin1.md", "---\nname: \xE9t\xE9\n---");
  write("broken-body.md", "---\nname: a\n---\n\xFF");
  EXPECT_THAT(usersOwn("id"), ElementsAre("a", "z"));
}

TEST_F(ListAugmentsToolTest, LinksToFilesAreFollowed) {
  writeFile(home_.file("elsewhere.txt"), "---\nname: Linked\n---");
  std::filesystem::create_directories(file(""));
  std::filesystem::create_symlink(home_.file("elsewhere.txt"), file("link.md"));
  EXPECT_THAT(usersOwn("id"), ElementsAre("link"));
  EXPECT_THAT(usersOwn("name"), ElementsAre("Linked"));
}

TEST_F(ListAugmentsToolTest, FileNamesThatAreNoTextAreSkippedAlone) {
  write("a.md");
  // Some file systems refuse such names, and then there is nothing to skip.
  const std::string path = file("b\xFF.md");
  if (FILE* stream = fopen(path.c_str(), "w")) {
    fputs("---\n---", stream);
    fclose(stream);
  }
  EXPECT_THAT(usersOwn("id"), ElementsAre("a"));
}

TEST_F(ListAugmentsToolTest, SomethingElseInPlaceOfTheDirectoryHoldsNoAugments) {
  writeFile(home_.configurationFile("augments"), "---\n---");
  EXPECT_THAT(usersOwn("id"), IsEmpty());
}

/// Runs `check` in a process of a user who may not read everything, and gives whether it held.
bool holdsForAnotherUser(bool (*check)()) {
  const pid_t child = fork();
  if (child == 0) {
    constexpr uid_t nobody = 65534;
    if (geteuid() == 0 && setuid(nobody) != 0) _exit(2);
    _exit(check() ? 0 : 1);
  }
  int status = 0;
  return waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

TEST_F(ListAugmentsToolTest, FilesWithoutPermissionAreSkippedAlone) {
  write("a.md");
  write("secret.md");
  write("z.md");
  std::filesystem::permissions(home_.path(), std::filesystem::perms(0755));
  std::filesystem::permissions(file("secret.md"), std::filesystem::perms::none);
  EXPECT_TRUE(holdsForAnotherUser([] { return usersOwn("id") == std::vector<std::string>{"a", "z"}; }));
}

TEST_F(ListAugmentsToolTest, ADirectoryWithoutPermissionHoldsNoAugments) {
  write("a.md");
  std::filesystem::permissions(home_.path(), std::filesystem::perms(0755));
  EXPECT_TRUE(holdsForAnotherUser([] { return usersOwn("id") == std::vector<std::string>{"a"}; }));
  std::filesystem::permissions(file(""), std::filesystem::perms::none);
  EXPECT_TRUE(holdsForAnotherUser([] { return usersOwn("id").empty(); }));
  std::filesystem::permissions(file(""), std::filesystem::perms::owner_all);
}

TEST_F(ListAugmentsToolTest, SaysWhatItDoesAndWarns) {
  EXPECT_EQ(ListAugmentsTool::name, "list_augments");
  EXPECT_EQ(ListAugmentsTool::description(),
            "List active and available augments along with the shared slot budget. Augments are short directives that "
            "shape assistant behavior." +
                configurationNotice());
  EXPECT_EQ(&ListAugmentsTool::inputSchema(), &emptyInputSchema());
}

}  // namespace
}  // namespace orvane::test
