// How the command line and the environment are read, seen through tools/list.
#include <gmock/gmock.h>

#include <filesystem>

#include "tests/support/server_test.h"
#include "tests/support/tool_count.h"

namespace orvane::test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Not;

class StartupTest : public ServerTest {
 protected:
  std::vector<std::string> namesWith(std::vector<std::string> arguments, std::vector<std::string> environment = {}) {
    auto server = start(std::move(arguments), std::move(environment));
    std::vector<std::string> names = toolNames(*server);
    expectCleanEnd(*server);
    return names;
  }

  std::vector<std::string> namesWithArgumentZero(const std::string& zero, std::vector<std::string> arguments = {}) {
    Launch launch;
    launch.argumentZero = zero;
    launch.arguments = std::move(arguments);
    auto server = start(launch);
    std::vector<std::string> names = toolNames(*server);
    expectCleanEnd(*server);
    return names;
  }
};

TEST_F(StartupTest, ClosedInputEndsSilently) {
  auto server = start();
  expectCleanEnd(*server);
}

// What the program opens must not take the place of a stream that is closed.
TEST_F(StartupTest, AClosedStreamIsFilledBeforeAnythingIsOpened) {
  Launch launch;
  launch.program = "/bin/sh";
  launch.arguments = {"-c", "exec \"$0\" 2>&-", ORVANE_MCP_PROGRAM};
  auto server = start(launch);
  expectPong(*server);
  EXPECT_EQ(std::filesystem::read_symlink("/proc/" + std::to_string(server->id()) + "/fd/2"), "/dev/null");
  server->send("\xff\n");  // a diagnostic that nobody hears
  expectPong(*server);
  expectCleanEnd(*server);

  launch.arguments = {"-c", "exec \"$0\" 0<&- 2>&-", ORVANE_MCP_PROGRAM};
  server = start(launch);
  expectCleanEnd(*server);
}

TEST_F(StartupTest, NoArgumentsSelectEverything) { EXPECT_EQ(namesWith({}).size(), toolCount); }

TEST_F(StartupTest, UnknownArgumentsAreIgnoredAndPrintNothing) {
  for (const char* argument : {"-h", "--help", "--version", "-v", "--toolsets=voice", "--read-only=true", "--READ-ONLY",
                               "--Toolsets", "voice", "", "--", "--read-only ", "--agent=x"}) {
    EXPECT_EQ(namesWith({argument}).size(), toolCount) << argument;
  }
}

TEST_F(StartupTest, ToolsetListsAreTrimmedAndLowerCased) {
  const auto three = namesWith({"--toolsets", "state, Settings ,VOICE"});
  EXPECT_EQ(three, namesWith({"--toolsets", "\t\n settings,voice,,state,state,\n"}));
  EXPECT_EQ(three.size(), 18U);
  EXPECT_THAT(three, Contains("speak"));
  EXPECT_THAT(three, Not(Contains("list_meetings")));
  EXPECT_EQ(namesWith({"--toolsets", "slate,nonsense"}).size(), 8U);
}

TEST_F(StartupTest, UselessToolsetListsSelectEverything) {
  for (const char* list :
       {"nonsense", " , ", "", " \n\t", ",,", "meetings,all", " ALL ", "slate, All", "state;voice"}) {
    EXPECT_EQ(namesWith({"--toolsets", list}).size(), toolCount) << list;
  }
  EXPECT_EQ(namesWith({"--toolsets"}).size(), toolCount);
  EXPECT_EQ(namesWith({"--read-only", "--toolsets"}).size(), 16U);
}

TEST_F(StartupTest, UnicodeWhitespaceIsTrimmedToo) {
  EXPECT_EQ(namesWith({"--toolsets", "\u00a0voice\u2003,\u2028nonsense"}).size(), 2U);
}

TEST_F(StartupTest, TheFirstToolsetsCounts) {
  EXPECT_EQ(namesWith({"--toolsets", "voice", "--toolsets", "slate"}).size(), 2U);
  EXPECT_EQ(namesWith({"--toolsets", "--toolsets", "voice"}).size(), toolCount);
  EXPECT_EQ(namesWith({"--toolsets", "--read-only"}).size(), 16U);
}

TEST_F(StartupTest, ValuesOfOtherOptionsAreSearchedToo) {
  EXPECT_EQ(namesWith({"--agent", "--read-only"}).size(), 16U);
  EXPECT_EQ(namesWith({"--agent", "--toolsets", "voice"}).size(), 2U);
  EXPECT_EQ(namesWith({"stray", "--read-only", "stray"}).size(), 16U);
  EXPECT_EQ(namesWith({"--agent", ""}).size(), toolCount);
  EXPECT_EQ(namesWith({"--agent"}).size(), toolCount);
}

TEST_F(StartupTest, IndexZeroIsSearchedToo) {
  EXPECT_EQ(namesWithArgumentZero("--read-only").size(), 16U);
  EXPECT_THAT(namesWithArgumentZero("--toolsets", {"voice"}), ElementsAre("list_tts_voices", "speak"));
  EXPECT_EQ(namesWithArgumentZero("--toolsets").size(), toolCount);
  EXPECT_EQ(namesWithArgumentZero("").size(), toolCount);
}

TEST_F(StartupTest, OnlyTheValueOneMeansLaunchedByTheAssistant) {
  EXPECT_THAT(namesWith({}, {"ORVANE_ASSISTANT_ORIGIN=1"}), Not(Contains("speak")));
  EXPECT_EQ(namesWith({}, {"ORVANE_ASSISTANT_ORIGIN=1"}).size(), toolCount - 1);
  for (const char* value : {"", "0", "true", "01", " 1", "1 ", "11", "yes"}) {
    EXPECT_EQ(namesWith({}, {std::string("ORVANE_ASSISTANT_ORIGIN=") + value}).size(), toolCount) << value;
  }
}

TEST_F(StartupTest, NothingElseOfTheEnvironmentMatters) {
  EXPECT_EQ(namesWith({}, {"LANG=tr_TR.UTF-8", "LC_ALL=tr_TR.UTF-8", "ORVANE_READ_ONLY=1"}).size(), toolCount);
}

}  // namespace
}  // namespace orvane::test
