// Preference notes and the context audit log, from real files in a private home and with several servers at once.
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <ctime>
#include <filesystem>

#include "tests/support/file_content.h"
#include "tests/support/server_test.h"
#include "tests/support/sizes.h"

namespace orvane::test {
namespace {

const std::string preferencesFile = ".config/orvane/preferences.md";
const std::string logFile = ".config/orvane/mcp-context-reads.jsonl";

class ContextTest : public ServerTest {
 protected:
  std::string content(const std::string& relativePath) const { return readFile(home_.path() + "/" + relativePath); }

  // The log's records, after checking that it is whole lines of one object each.
  std::vector<Json> records() const {
    std::vector<Json> result;
    const std::string log = content(logFile);
    EXPECT_TRUE(log.ends_with('\n'));
    for (std::size_t start = 0; start < log.size();) {
      const std::size_t end = log.find('\n', start);
      const std::string line = log.substr(start, end - start);
      result.push_back(parseJson(line));
      EXPECT_TRUE(result.back().is_object()) << line;
      start = end + 1;
    }
    return result;
  }
};

TEST_F(ContextTest, ANoteIsRememberedAndRead) {
  auto server = start();
  EXPECT_EQ(toolResult(server->request(toolCall("read_preferences"))), parseJson(R"({"content":"","char_count":0})"));
  EXPECT_EQ(toolResult(server->request(
                toolCall("remember_preference", R"({"note":" signs as\r\nAda / 👩‍👩‍👧 "})"))),
            parseJson(R"({"ok":true,"char_count":19})"));
  EXPECT_EQ(content(preferencesFile), "- signs as Ada / 👩‍👩‍👧\n");
  EXPECT_EQ(toolResult(server->request(toolCall("read_preferences"))),
            parseJson(R"({"content":"- signs as Ada / 👩‍👩‍👧\n","char_count":19})"));
  expectCleanEnd(*server);
}

TEST_F(ContextTest, EachCallLeavesOneRecordInOrderAndPendingOnesAreWrittenAtTheEnd) {
  auto server = start();
  server->send(toolCall("read_preferences") + "\n");
  server->send(toolCall("remember_preference", R"({"note":"a"})") + "\n");
  server->send(toolCall("remember_preference", R"({"note":5})") + "\n");
  // Neither a notification nor another tool is recorded.
  server->send(R"({"jsonrpc":"2.0","method":"tools/call","params":{"name":"read_preferences"}})"
               "\n");
  server->send(toolCall("list_dictionary") + "\n");
  EXPECT_EQ(server->finish().size(), 4U);
  EXPECT_EQ(server->standardError(), "");

  const std::vector<Json> log = records();
  ASSERT_EQ(log.size(), 3U);
  const std::vector<std::string> results{"ok", "ok", "error: note is required"};
  const std::vector<std::string> tools{"read_preferences", "remember_preference", "remember_preference"};
  for (std::size_t i = 0; i < log.size(); ++i) {
    const auto& record = log[i].get_object();
    EXPECT_EQ(record.at("tool"), Json(tools[i]));
    EXPECT_EQ(record.at("result"), Json(results[i]));
    EXPECT_EQ(record.contains("output_bytes"), i < 2);
    EXPECT_EQ(record.size(), i < 2 ? 4U : 3U);
    EXPECT_THAT(std::string(record.at("ts").get_string()),
                ::testing::MatchesRegex("[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3}Z"));
  }
}

// The home directory is looked up for the first time by the log itself, maybe while the process ends.
TEST_F(ContextTest, RefusedNotesAreRecordedEvenIfTheyAreAllThereIs) {
  const std::string directory = home_.root() + "/started-here";
  std::filesystem::create_directory(directory);
  constexpr std::size_t calls = 5;
  constexpr std::size_t rounds = 40;
  for (std::size_t round = 1; round <= rounds; ++round) {
    Launch launch;
    launch.workingDirectory = directory;
    auto server = start(launch);
    for (std::size_t call = 0; call < calls; ++call) server->send(toolCall("remember_preference") + "\n");
    EXPECT_EQ(server->finish().size(), calls);
    EXPECT_EQ(server->standardError(), "");
    ASSERT_EQ(records().size(), round * calls);
  }
  EXPECT_TRUE(std::filesystem::is_empty(directory));
}

TEST_F(ContextTest, AFilteredOutToolLeavesNoRecord) {
  auto server = start(std::vector<std::string>{"--read-only"});
  expectError(server->request(toolCall("remember_preference", R"({"note":"a"})")), 1, -32602,
              "Unknown tool: remember_preference");
  expectCleanEnd(*server);
  struct stat status {};
  EXPECT_NE(stat((home_.path() + "/" + logFile).c_str(), &status), 0);
}

TEST_F(ContextTest, SeveralServersAppendToOneLogWithoutLosingOrMixingALine) {
  for (const std::size_t count : {2U, 10U}) {
    home_.write(logFile, "");
    home_.write(preferencesFile, "- note\n");
    constexpr std::size_t callsEach = 100;
    std::vector<std::unique_ptr<ServerProcess>> servers;
    for (std::size_t i = 0; i < count; ++i) servers.push_back(start());
    for (std::size_t call = 0; call < callsEach; ++call) {
      for (const auto& server : servers) server->send(toolCall("read_preferences") + "\n");
    }
    for (const auto& server : servers) EXPECT_EQ(server->finish().size(), callsEach);
    const std::vector<Json> log = records();
    EXPECT_EQ(log.size(), count * callsEach);
    for (const Json& record : log) EXPECT_EQ(record.get_object().at("output_bytes"), Json(7));
  }
}

TEST_F(ContextTest, AFIFOWithoutAReaderInPlaceOfTheLogHoldsNothingUp) {
  home_.write(preferencesFile, "- note\n");
  const std::string path = home_.path() + "/" + logFile;
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  auto server = start();
  EXPECT_EQ(toolResult(server->request(toolCall("read_preferences"))),
            parseJson(R"({"content":"- note\n","char_count":7})"));
  expectCleanEnd(*server, "ContextAuditLog: open for write failed: " + path + "\n");
}

TEST_F(ContextTest, ALogThatTakesNoDataIsAFailedWrite) {
  home_.write(preferencesFile, "- note\n");
  ASSERT_EQ(symlink("/dev/full", (home_.path() + "/" + logFile).c_str()), 0);
  auto server = start();
  EXPECT_EQ(toolResult(server->request(toolCall("read_preferences"))),
            parseJson(R"({"content":"- note\n","char_count":7})"));
  expectCleanEnd(*server, "ContextAuditLog: write failed: No space left on device (errno 28)\n");
}

// A file that has reached the user's limit is a failed write; the signal that the system sends with it ends nothing.
// The limit leaves room for what a build that measures coverage records at its end.
TEST_F(ContextTest, ALogAtTheLimitOfFileSizesIsAFailedWrite) {
  home_.write(preferencesFile, "- note\n");
  home_.write(logFile, std::string(4 * mebibyte, '\n'));
  Launch launch;
  launch.prepare = [] {
    constexpr rlimit limit{mebibyte, mebibyte};
    setrlimit(RLIMIT_FSIZE, &limit);
  };
  auto server = start(launch);
  EXPECT_EQ(toolResult(server->request(toolCall("read_preferences"))),
            parseJson(R"({"content":"- note\n","char_count":7})"));
  expectCleanEnd(*server, "ContextAuditLog: write failed: File too large (errno 27)\n");
}

TEST_F(ContextTest, NewFilesHaveTheDefaultPermissions) {
  Launch launch;
  launch.prepare = [] { umask(023); };
  auto server = start(launch);
  toolResult(server->request(toolCall("remember_preference", R"({"note":"a"})")));
  expectCleanEnd(*server);
  for (const std::string& file : {logFile, preferencesFile}) {
    struct stat status {};
    ASSERT_EQ(stat((home_.path() + "/" + file).c_str(), &status), 0) << file;
    EXPECT_EQ(status.st_mode & 07777U, 0644U) << file;
  }
}

TEST_F(ContextTest, TimesAreInUTCWhateverTheTimeZone) {
  auto server = start({}, {"TZ=XXX-9"});
  const std::time_t before = std::time(nullptr);
  toolResult(server->request(toolCall("read_preferences")));
  expectCleanEnd(*server);
  const std::time_t after = std::time(nullptr);
  std::tm utc{};
  const std::string text(records().at(0).at("ts").as_string());
  ASSERT_NE(strptime(text.c_str(), "%Y-%m-%dT%H:%M:%S", &utc), nullptr);
  EXPECT_GE(timegm(&utc), before);
  EXPECT_LE(timegm(&utc), after);
}

TEST_F(ContextTest, AFIFOInPlaceOfThePreferencesIsUnreadable) {
  home_.write(".config/orvane/settings.json", "{}");
  ASSERT_EQ(mkfifo((home_.path() + "/" + preferencesFile).c_str(), 0600), 0);
  auto server = start();
  EXPECT_EQ(toolResult(server->request(toolCall("read_preferences"))).get_object().at("error"),
            Json("could not read preferences"));
  EXPECT_EQ(toolResult(server->request(toolCall("remember_preference", R"({"note":"a"})"))).get_object().at("error"),
            Json("could not read existing preferences"));
  expectCleanEnd(*server);
}

}  // namespace
}  // namespace orvane::test
