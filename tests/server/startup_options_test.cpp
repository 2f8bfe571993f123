#include "server/startup_options.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace orvane::test {
namespace {

using enum MCPToolset;

constexpr MCPToolsetSet everything = MCPToolsetSet::all();

StartupOptions optionsOf(const std::vector<std::string>& arguments) { return readStartupOptions(arguments, nullptr); }

TEST(StartupOptionsTest, NothingGivenIsEverythingAllowed) {
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"/usr/bin/orvane-mcp"}, std::vector<std::string>{}}) {
    const StartupOptions options = optionsOf(arguments);
    EXPECT_EQ(options.agentName, std::nullopt);
    EXPECT_FALSE(options.launchedByAssistant);
    EXPECT_EQ(options.selectedToolsets, everything);
    EXPECT_FALSE(options.readOnlyMode);
  }
}

TEST(StartupOptionsTest, TheAgentNameIsTheArgumentAfterTheFirstAgentOption) {
  EXPECT_EQ(optionsOf({"p", "--agent", "coder"}).agentName, "coder");
  EXPECT_EQ(optionsOf({"p", "--agent", "a", "--agent", "b"}).agentName, "a");
  EXPECT_EQ(optionsOf({"p", "--agent", ""}).agentName, "");
  EXPECT_EQ(optionsOf({"p", "--agent", " x "}).agentName, " x ");
  EXPECT_EQ(optionsOf({"p", "--agent", "--agent"}).agentName, "--agent");
  EXPECT_EQ(optionsOf({"p", "--agent", "\xFF"}).agentName, "\xFF");
  EXPECT_EQ(optionsOf({"p", "--agent"}).agentName, std::nullopt);
  EXPECT_EQ(optionsOf({"--agent", "x"}).agentName, "x") << "the program path is searched too";
}

TEST(StartupOptionsTest, OptionsAreFoundWhereverTheyStand) {
  const StartupOptions options = optionsOf({"p", "--agent", "--read-only"});
  EXPECT_EQ(options.agentName, "--read-only");
  EXPECT_TRUE(options.readOnlyMode);
  EXPECT_EQ(optionsOf({"p", "--agent", "--toolsets", "slate"}).selectedToolsets, (MCPToolsetSet{slate}));
  EXPECT_TRUE(optionsOf({"--read-only"}).readOnlyMode);
  EXPECT_TRUE(optionsOf({"p", "x", "--read-only", "y"}).readOnlyMode);
  EXPECT_EQ(optionsOf({"p", "--toolsets", "--agent", "voice"}).agentName, "voice");
  EXPECT_EQ(optionsOf({"p", "--toolsets", "--agent", "voice"}).selectedToolsets, everything);
}

TEST(StartupOptionsTest, OtherSpellingsAreIgnored) {
  const StartupOptions options =
      optionsOf({"p", "--Agent", "x", "--agent=x", "-agent", "x", "--toolsets=slate", "--TOOLSETS", "slate",
                 "--read-only=true", "--readonly", "-h", "--help", "--version"});
  EXPECT_EQ(options.agentName, std::nullopt);
  EXPECT_EQ(options.selectedToolsets, everything);
  EXPECT_FALSE(options.readOnlyMode);
}

TEST(StartupOptionsTest, TheFirstToolsetsOptionCounts) {
  EXPECT_EQ(optionsOf({"p", "--toolsets", "slate", "--toolsets", "voice"}).selectedToolsets, (MCPToolsetSet{slate}));
  EXPECT_EQ(optionsOf({"p", "--toolsets"}).selectedToolsets, everything);
  EXPECT_EQ(optionsOf({"p", "--toolsets", "slate", "--toolsets"}).selectedToolsets, (MCPToolsetSet{slate}));
}

TEST(StartupOptionsTest, OnlyTheValueOneMarksTheAssistant) {
  EXPECT_TRUE(readStartupOptions({"p"}, "1").launchedByAssistant);
  for (const char* value : {"", "0", "true", "01", " 1", "1 ", "1\n", "11", "yes"}) {
    EXPECT_FALSE(readStartupOptions({"p"}, value).launchedByAssistant) << value;
  }
}

TEST(ParseToolsetsTest, NamesSelectToolsets) {
  EXPECT_EQ(parseToolsets("state, Settings ,VOICE"), (MCPToolsetSet{state, settings, voice}));
  EXPECT_EQ(parseToolsets("meetings"), (MCPToolsetSet{meetings}));
  EXPECT_EQ(parseToolsets("slate,computer,augments"), (MCPToolsetSet{slate, computer, augments}));
  EXPECT_EQ(parseToolsets("slate,slate , SLATE"), (MCPToolsetSet{slate}));
  EXPECT_EQ(parseToolsets("state,settings,voice,meetings,slate,computer,augments"), everything);
}

TEST(ParseToolsetsTest, BlanksAndNewlinesAroundNamesAreNotPartOfThem) {
  EXPECT_EQ(parseToolsets("\n\t slate \r\n"), (MCPToolsetSet{slate}));
  EXPECT_EQ(parseToolsets("\xC2\xA0slate\xE3\x80\x80,\xE2\x80\xA8voice\xC2\x85"), (MCPToolsetSet{slate, voice}));
  EXPECT_EQ(parseToolsets("sl ate,voice"), (MCPToolsetSet{voice}));
}

TEST(ParseToolsetsTest, EmptyPiecesAndUnknownNamesAreSkipped) {
  EXPECT_EQ(parseToolsets("slate,nonsense"), (MCPToolsetSet{slate}));
  EXPECT_EQ(parseToolsets(",,slate,,"), (MCPToolsetSet{slate}));
  EXPECT_EQ(parseToolsets("slate;voice,state"), (MCPToolsetSet{state}));
}

TEST(ParseToolsetsTest, NoKnownNameSelectsAll) {
  EXPECT_EQ(parseToolsets(std::nullopt), everything);
  for (const char* value : {"", " ", "\n", ",", " , ", ",,", "nonsense", "slates", "slate voice", "\xFF"}) {
    EXPECT_EQ(parseToolsets(value), everything) << value;
  }
}

TEST(ParseToolsetsTest, AllSelectsAllWhateverElseIsThere) {
  for (const char* value :
       {"all", "ALL", " All ", "meetings,all", "all,meetings", "nonsense,aLL,", "slate, all ,voice"}) {
    EXPECT_EQ(parseToolsets(value), everything) << value;
  }
}

TEST(ParseToolsetsTest, CaseFoldingKnowsMoreThanASCIIAndDependsOnNoLocale) {
  // A dotted capital I is not a plain one.
  EXPECT_EQ(parseToolsets("vo\xC4\xB0"
                          "ce,slate"),
            (MCPToolsetSet{slate}));
  EXPECT_EQ(parseToolsets("VOICE"), (MCPToolsetSet{voice}));
}

TEST(ParseToolsetsTest, AListOfAnyLengthIsRead) {
  std::string list;
  for (int i = 0; i < 100000; ++i) list += "x,";
  EXPECT_EQ(parseToolsets(list + "voice"), (MCPToolsetSet{voice}));
}

}  // namespace
}  // namespace orvane::test
