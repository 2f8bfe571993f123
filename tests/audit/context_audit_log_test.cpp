#include "audit/context_audit_log.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <future>
#include <map>
#include <new>
#include <thread>
#include <vector>

#include "core/descriptor.h"
#include "core/error_text.h"
#include "core/json_reader.h"
#include "core/text.h"
#include "tests/support/fake_platform.h"
#include "tests/support/file_content.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using TimePoint = std::chrono::system_clock::time_point;

class ContextAuditLogTest : public testing::Test {
 protected:
  ContextAuditLogTest() { unsetenv("ORV_MCP_AUDIBLE"); }
  ~ContextAuditLogTest() override { unsetenv("ORV_MCP_AUDIBLE"); }

  std::string path() const { return home_.file(".config/orvane/mcp-context-reads.jsonl"); }
  std::string logged() const { return readFile(path()); }
  void recordAndDrain(ContextAuditRecord record) {
    log_.record(std::move(record));
    log_.drain();
  }
  std::string standardErrorOf(ContextAuditRecord record) {
    testing::internal::CaptureStderr();
    recordAndDrain(std::move(record));
    return testing::internal::GetCapturedStderr();
  }
  std::string timestampAt(TimePoint time) {
    now_ = time;
    fs::remove(path());
    recordAndDrain({.tool = "t", .result = "ok"});
    return *readJSONObject(logged()).value().find("ts")->asString();
  }

  FakeHome home_;
  TimePoint now_{1794792225678ms};  // changed only while the queue is idle
  int cues_ = 0;
  ContextAuditLog log_{{[this] { return now_; }, [this] { ++cues_; }}};
};

const ContextAuditRecord plain{.tool = "read_preferences", .result = "ok"};

TEST_F(ContextAuditLogTest, FirstRecordMakesDirectoryAndFile) {
  recordAndDrain(plain);
  EXPECT_EQ(logged(), "{\"ts\":\"2026-11-16T01:23:45.678Z\",\"tool\":\"read_preferences\",\"result\":\"ok\"}\n");
}

TEST_F(ContextAuditLogTest, WritesEveryFieldAndEscapesSlashes) {
  recordAndDrain({.tool = "t/u",
                  .result = "error: a/b",
                  .app = "A",
                  .bundle_id = "b/c",
                  .output_bytes = 7,
                  .extra = {{"k/l", JSON::Array{"/", nullptr}}}});
  EXPECT_EQ(logged(),
            R"({"ts":"2026-11-16T01:23:45.678Z","tool":"t\/u","result":"error: a\/b","app":"A","bundle_id":"b\/c",)"
            R"("output_bytes":7,"k\/l":["\/",null]})"
            "\n");
}

TEST_F(ContextAuditLogTest, ExtraFieldsOverwrite) {
  recordAndDrain({.tool = "t", .result = "ok", .output_bytes = 1, .extra = {{"ts", 1}, {"output_bytes", "many"}}});
  EXPECT_EQ(logged(), "{\"ts\":1,\"tool\":\"t\",\"result\":\"ok\",\"output_bytes\":\"many\"}\n");
}

TEST_F(ContextAuditLogTest, TimestampsHaveThreeFractionDigits) {
  EXPECT_EQ(timestampAt(TimePoint{}), "1970-01-01T00:00:00.000Z");
  EXPECT_EQ(timestampAt(TimePoint{1ms}), "1970-01-01T00:00:00.001Z");
  EXPECT_EQ(timestampAt(TimePoint{1999us}), "1970-01-01T00:00:00.001Z");
  EXPECT_EQ(timestampAt(TimePoint{999999us}), "1970-01-01T00:00:00.999Z");
  EXPECT_EQ(timestampAt(TimePoint{-1us}), "1969-12-31T23:59:59.999Z");
  EXPECT_EQ(timestampAt(TimePoint{-1s}), "1969-12-31T23:59:59.000Z");
  EXPECT_EQ(timestampAt(TimePoint{951782400s}), "2000-02-29T00:00:00.000Z");
  EXPECT_EQ(timestampAt(TimePoint{4102444799s + 500ms}), "2099-12-31T23:59:59.500Z");
}

TEST_F(ContextAuditLogTest, DropsARecordThatIsNoTextSilently) {
  EXPECT_EQ(standardErrorOf({.tool = "\xff", .result = "ok"}), "");
  EXPECT_FALSE(fs::exists(path()));
  recordAndDrain(plain);
  EXPECT_TRUE(fs::exists(path()));
}

TEST_F(ContextAuditLogTest, ARecordIsMadeOnTheLogsOwnThread) {
  setenv("ORV_MCP_AUDIBLE", "0", 1);
  std::promise<void> mayGoOn;
  std::array<char, 64> threadName{};
  ContextAuditLog other({[&] {
                           pthread_getname_np(pthread_self(), threadName.data(), threadName.size());
                           mayGoOn.get_future().wait();
                           return TimePoint{};
                         },
                         [] {}});
  other.record(plain);
  // The record waits, its caller does not.
  EXPECT_FALSE(fs::exists(path()));
  mayGoOn.set_value();
  other.drain();
  EXPECT_EQ(splitAt(logged(), "\n").size(), 2U);
  const std::string label = "com.orvane.mcp.context-audit";
  EXPECT_TRUE(label.ends_with(threadName.data()) && threadName[0] != '\0') << threadName.data();
}

TEST_F(ContextAuditLogTest, AFailureOnTheQueueCostsOneRecord) {
  bool failing = false;
  ContextAuditLog other({[&]() -> TimePoint {
                           if (failing) throw std::bad_alloc();
                           return TimePoint{};
                         },
                         [] {}});
  setenv("ORV_MCP_AUDIBLE", "0", 1);
  failing = true;
  other.record(plain);
  other.drain();
  failing = false;
  other.record(plain);
  other.drain();
  EXPECT_EQ(splitAt(logged(), "\n").size(), 2U);
}

TEST_F(ContextAuditLogTest, CueSoundsAtMostOnceInTwoSeconds) {
  const TimePoint start = now_;
  const std::pair<std::chrono::milliseconds, int> steps[] = {{0ms, 1},    {0ms, 1},    {1999ms, 1}, {2000ms, 2},
                                                             {3999ms, 2}, {1000ms, 2}, {4000ms, 3}, {60000ms, 4}};
  for (const auto& [offset, expected] : steps) {
    now_ = start + offset;
    recordAndDrain(plain);
    EXPECT_EQ(cues_, expected) << offset.count();
  }
}

TEST_F(ContextAuditLogTest, OnlyExactlyZeroSilencesTheCue) {
  for (const char* value : {"", "false", "1", "00", " 0", "0 "}) {
    setenv("ORV_MCP_AUDIBLE", value, 1);
    cues_ = 0;
    now_ += 2s;
    recordAndDrain(plain);
    EXPECT_EQ(cues_, 1) << value;
  }
  setenv("ORV_MCP_AUDIBLE", "0", 1);
  cues_ = 0;
  now_ += 2s;
  recordAndDrain(plain);
  EXPECT_EQ(cues_, 0);
  // The silent record did not count as a cue.
  unsetenv("ORV_MCP_AUDIBLE");
  recordAndDrain(plain);
  EXPECT_EQ(cues_, 1);
}

TEST_F(ContextAuditLogTest, SharedLogPlaysTink) {
  ContextAuditLog::shared().record(plain);
  ContextAuditLog::shared().drain();
  if (fakePlatform().soundsPlayed.empty()) {
    // Another test of this process had the cue less than two seconds ago.
    std::this_thread::sleep_for(2s);
    ContextAuditLog::shared().record(plain);
    ContextAuditLog::shared().drain();
  }
  EXPECT_EQ(fakePlatform().soundsPlayed, std::vector<std::string>{"Tink"});
  EXPECT_GE(splitAt(logged(), "\n").size(), 2U);
}

TEST_F(ContextAuditLogTest, KeepsTheOrderOfCallsAndWritesAllBeforeItsEnd) {
  {
    ContextAuditLog other({[] { return TimePoint{}; }, [] {}});
    for (int i = 0; i < 200; ++i) other.record({.tool = "t", .result = "ok", .output_bytes = i});
  }
  const std::string text = logged();
  const std::vector<std::string_view> lines = splitAt(text, "\n");
  ASSERT_EQ(lines.size(), 201U);
  for (std::size_t i = 0; i < 200; ++i) {
    EXPECT_EQ(readJSONObject(lines[i]).value().find("output_bytes")->asInteger(), static_cast<std::int64_t>(i));
  }
}

TEST_F(ContextAuditLogTest, AppendsToWhatIsThere) {
  writeFile(path(), "before\n");
  recordAndDrain(plain);
  EXPECT_TRUE(logged().starts_with("before\n{"));
}

TEST_F(ContextAuditLogTest, SaysThatItCannotOpen) {
  fs::create_directories(path());
  EXPECT_EQ(standardErrorOf(plain), "ContextAuditLog: open for write failed: " + path() + "\n");
}

TEST_F(ContextAuditLogTest, SaysSoWhenTheDirectoryCannotBe) {
  writeFile(home_.file(".config"), "in the way");
  EXPECT_EQ(standardErrorOf(plain), "ContextAuditLog: open for write failed: " + path() + "\n");
}

TEST_F(ContextAuditLogTest, DoesNotWaitForTheReaderOfAFifo) {
  home_.configurationFile("");
  ASSERT_EQ(mkfifo(path().c_str(), 0600), 0);
  EXPECT_EQ(standardErrorOf(plain), "ContextAuditLog: open for write failed: " + path() + "\n");
}

TEST_F(ContextAuditLogTest, SaysThatAFullFifoTakesNothing) {
  home_.configurationFile("");
  ASSERT_EQ(mkfifo(path().c_str(), 0600), 0);
  const Descriptor reader(open(path().c_str(), O_RDONLY | O_NONBLOCK));
  const Descriptor writer(open(path().c_str(), O_WRONLY | O_NONBLOCK));
  ASSERT_TRUE(reader.isOpen() && writer.isOpen());
  const std::string block(4096, 'x');
  while (write(writer.get(), block.data(), block.size()) > 0) {
  }
  EXPECT_EQ(standardErrorOf(plain), "ContextAuditLog: write failed: " + errorText(EAGAIN) + "\n");
}

TEST_F(ContextAuditLogTest, SaysThatADeviceTakesNothing) {
  if (!fs::exists("/dev/full")) GTEST_SKIP() << "no such device on this system";
  home_.configurationFile("");
  fs::create_symlink("/dev/full", path());
  EXPECT_EQ(standardErrorOf(plain), "ContextAuditLog: write failed: " + errorText(ENOSPC) + "\n");
}

TEST_F(ContextAuditLogTest, TenProcessesLoseAndMixNothing) {
  constexpr int processes = 10;
  constexpr int records = 100;
  std::vector<pid_t> children;
  for (int process = 0; process < processes; ++process) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      {
        ContextAuditLog own({[] { return TimePoint{}; }, [] {}});
        for (int i = 0; i < records; ++i) {
          own.record({.tool = std::to_string(process), .result = std::string(300, 'r'), .output_bytes = i});
        }
      }
      _exit(0);
    }
    children.push_back(child);
  }
  for (const pid_t child : children) {
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
  }
  const std::string text = logged();
  std::vector<std::string_view> lines = splitAt(text, "\n");
  ASSERT_EQ(lines.size(), processes * records + 1U);
  lines.pop_back();
  std::map<std::string, std::int64_t> next;
  for (const std::string_view line : lines) {
    const std::optional<JSON::Object> record = readJSONObject(line);
    ASSERT_TRUE(record) << line;
    EXPECT_EQ(record->find("output_bytes")->asInteger(), next[*record->find("tool")->asString()]++);
  }
  for (const auto& [tool, count] : next) EXPECT_EQ(count, records) << tool;
}

}  // namespace
}  // namespace orvane::test
