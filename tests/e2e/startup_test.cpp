// How the command line and the environment are read, seen through tools/list.
#include <unistd.h>

#include <filesystem>

#include "tests/support/decided_tools.h"
#include "tests/support/server_test.h"

namespace orvane::test {
namespace {

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
  launch.prepare = [] { close(STDERR_FILENO); };
  auto server = start(launch);
  expectPong(*server);
  EXPECT_EQ(std::filesystem::read_symlink("/proc/" + std::to_string(server->id()) + "/fd/2"), "/dev/null");
  server->send("\xff\n");  // a diagnostic that nobody hears
  expectPong(*server);
  expectCleanEnd(*server);

  launch.prepare = [] {
    close(STDIN_FILENO);
    close(STDERR_FILENO);
  };
  server = start(launch);
  expectCleanEnd(*server);
}

TEST_F(StartupTest, NoArgumentsSelectEverything) { EXPECT_EQ(namesWith({}), decidedNames()); }

TEST_F(StartupTest, UnknownArgumentsAreIgnoredAndPrintNothing) {
  for (const char* argument : {"-h", "--help", "--version", "-v", "--toolsets=voice", "--read-only=true", "--READ-ONLY",
                               "--Toolsets", "voice", "", "--", "--read-only ", "--agent=x"}) {
    EXPECT_EQ(namesWith({argument}), decidedNames()) << argument;
  }
}

TEST_F(StartupTest, ToolsetListsAreTrimmedAndLowerCased) {
  const auto three = namesWith({"--toolsets", "state, Settings ,VOICE"});
  EXPECT_EQ(three, namesWith({"--toolsets", "\t\n settings,voice,,state,state,\n"}));
  EXPECT_EQ(three, decidedNames({"state", "settings", "voice"}));
  EXPECT_EQ(namesWith({"--toolsets", "slate,nonsense"}), decidedNames({"slate"}));
}

TEST_F(StartupTest, UselessToolsetListsSelectEverything) {
  for (const char* list :
       {"nonsense", " , ", "", " \n\t", ",,", "meetings,all", " ALL ", "slate, All", "state;voice"}) {
    EXPECT_EQ(namesWith({"--toolsets", list}), decidedNames()) << list;
  }
  EXPECT_EQ(namesWith({"--toolsets"}), decidedNames());
  EXPECT_EQ(namesWith({"--read-only", "--toolsets"}), decidedNames(decidedToolsets(), true));
}

TEST_F(StartupTest, UnicodeWhitespaceIsTrimmedToo) {
  EXPECT_EQ(namesWith({"--toolsets", "\u00a0voice\u2003,\u2028nonsense"}), decidedNames({"voice"}));
}

TEST_F(StartupTest, TheFirstToolsetsCounts) {
  EXPECT_EQ(namesWith({"--toolsets", "voice", "--toolsets", "slate"}), decidedNames({"voice"}));
  EXPECT_EQ(namesWith({"--toolsets", "--toolsets", "voice"}), decidedNames());
  EXPECT_EQ(namesWith({"--toolsets", "--read-only"}), decidedNames(decidedToolsets(), true));
}

TEST_F(StartupTest, ValuesOfOtherOptionsAreSearchedToo) {
  EXPECT_EQ(namesWith({"--agent", "--read-only"}), decidedNames(decidedToolsets(), true));
  EXPECT_EQ(namesWith({"--agent", "--toolsets", "voice"}), decidedNames({"voice"}));
  EXPECT_EQ(namesWith({"stray", "--read-only", "stray"}), decidedNames(decidedToolsets(), true));
  EXPECT_EQ(namesWith({"--agent", ""}), decidedNames());
  EXPECT_EQ(namesWith({"--agent"}), decidedNames());
}

TEST_F(StartupTest, IndexZeroIsSearchedToo) {
  EXPECT_EQ(namesWithArgumentZero("--read-only"), decidedNames(decidedToolsets(), true));
  EXPECT_EQ(namesWithArgumentZero("--toolsets", {"voice"}), decidedNames({"voice"}));
  EXPECT_EQ(namesWithArgumentZero("--toolsets"), decidedNames());
  EXPECT_EQ(namesWithArgumentZero(""), decidedNames());
}

TEST_F(StartupTest, OnlyTheValueOneMeansLaunchedByTheAssistant) {
  EXPECT_EQ(namesWith({}, {"ORVANE_ASSISTANT_ORIGIN=1"}), decidedNames(decidedToolsets(), false, true));
  for (const char* value : {"", "0", "true", "01", " 1", "1 ", "11", "yes"}) {
    EXPECT_EQ(namesWith({}, {std::string("ORVANE_ASSISTANT_ORIGIN=") + value}), decidedNames()) << value;
  }
}

TEST_F(StartupTest, NothingElseOfTheEnvironmentMatters) {
  EXPECT_EQ(namesWith({}, {"LANG=tr_TR.UTF-8", "LC_ALL=tr_TR.UTF-8", "ORVANE_READ_ONLY=1"}), decidedNames());
}

}  // namespace
}  // namespace orvane::test
