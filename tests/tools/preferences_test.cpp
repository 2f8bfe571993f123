#include "tools/local/preferences.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>

#include "audit/context_audit_log.h"
#include "core/error_text.h"
#include "core/json_reader.h"
#include "core/json_writer.h"
#include "tests/support/fake_platform.h"
#include "tests/support/file_content.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;

class PreferencesTest : public testing::Test {
 protected:
  void TearDown() override { ContextAuditLog::shared().drain(); }

  // The log shares the fake platform with the test, so each call is followed to its end.
  static std::string read() {
    JSON result = ReadPreferencesTool::call({});
    ContextAuditLog::shared().drain();
    return writeCompactJSON(result);
  }
  static std::string remember(const JSON& note) {
    JSON result = RememberPreferenceTool::call({{"note", note}});
    ContextAuditLog::shared().drain();
    return writeCompactJSON(result);
  }
  std::string lastRecordLessTime() const {
    std::string log = readFile(home_.file(".config/orvane/mcp-context-reads.jsonl"));
    EXPECT_TRUE(log.ends_with('\n'));
    log.pop_back();
    JSON::Object record = readJSONObject(log.substr(log.rfind('\n') + 1)).value();
    EXPECT_TRUE(record.take("ts").has_value());
    return writeCompactJSON(record);
  }
  std::string notes() const { return readFile(path()); }
  std::string path() const { return home_.file(".config/orvane/preferences.md"); }
  std::size_t entries() const {
    return static_cast<std::size_t>(
        std::distance(fs::directory_iterator(home_.file(".config/orvane")), fs::directory_iterator{}));
  }

  FakeHome home_;
};

const std::string full =
    "{\"error\":\"preferences file is full (32 KB cap)\","
    "\"fix\":\"Ask the user to prune preferences.md before remembering more.\"}";
const std::string tooLong = R"({"error":"note exceeds 1 KB limit"})";
const std::string required = R"({"error":"note is required"})";
const std::string emptyNote = R"({"error":"note must be non-empty after trimming"})";

std::string unreadable(int error) {
  return R"({"error":"could not read existing preferences","details":")" + errorText(error) +
         R"(","fix":"Open ~/.config/orvane/preferences.md, fix permissions or contents, then retry."})";
}

TEST_F(PreferencesTest, ReadsAbsentFileAsEmpty) {
  EXPECT_EQ(read(), R"({"content":"","char_count":0})");
  EXPECT_EQ(lastRecordLessTime(), R"({"tool":"read_preferences","result":"ok","output_bytes":0})");
}

TEST_F(PreferencesTest, ReadsWholeFileAndCountsCharacters) {
  writeFile(path(), "e\u0301\r\n\u00e4");
  EXPECT_EQ(read(), "{\"content\":\"e\u0301\\r\\n\u00e4\",\"char_count\":3}");
  EXPECT_EQ(lastRecordLessTime(), R"({"tool":"read_preferences","result":"ok","output_bytes":3})");
}

TEST_F(PreferencesTest, SaysWhyItCannotRead) {
  fs::create_directories(path());
  EXPECT_EQ(read(), R"({"error":"could not read preferences","details":")" + errorText(EISDIR) + "\"}");
  EXPECT_EQ(lastRecordLessTime(), R"({"tool":"read_preferences","result":"error: could not read preferences"})");
}

TEST_F(PreferencesTest, DoesNotReadInvalidUTF8) {
  writeFile(path(), "ok \xff");
  EXPECT_EQ(read(), R"({"error":"could not read preferences","details":"the file is not valid UTF-8"})");
}

TEST_F(PreferencesTest, FirstNoteMakesDirectoryAndFile) {
  EXPECT_EQ(remember("Sign as A"), R"({"ok":true,"char_count":12})");
  EXPECT_EQ(notes(), "- Sign as A\n");
  EXPECT_EQ(lastRecordLessTime(), R"({"tool":"remember_preference","result":"ok","output_bytes":12})");
  EXPECT_EQ(read(), R"({"content":"- Sign as A\n","char_count":12})");
}

TEST_F(PreferencesTest, RequiresANote) {
  EXPECT_EQ(writeCompactJSON(RememberPreferenceTool::call({})), required);
  for (const JSON& note : {JSON(), JSON(1), JSON(true), JSON(JSON::Array{"a"}), JSON(JSON::Object{})}) {
    EXPECT_EQ(remember(note), required);
  }
  EXPECT_EQ(lastRecordLessTime(), R"({"tool":"remember_preference","result":"error: note is required"})");
  EXPECT_FALSE(fs::exists(path()));
}

TEST_F(PreferencesTest, RefusesAnEmptyNote) {
  for (const char* note : {"", " ", "\n", "\r\n", "\r", " \t\r\n\u00a0\u2028 "}) EXPECT_EQ(remember(note), emptyNote);
  EXPECT_FALSE(fs::exists(path()));
}

TEST_F(PreferencesTest, MakesOneLineOfTheNote) {
  const std::pair<const char*, const char*> cases[] = {{"a\r\nb", "a b"},     {"a\nb", "a b"},      {"a\rb", "a\rb"},
                                                       {"a\r\r\nb", "a\r b"}, {"a\n\r\nb", "a  b"}, {"a\n\rb", "a \rb"},
                                                       {" a b \r\n", "a b"},  {"\ra\r", "a"}};
  for (const auto& [note, line] : cases) {
    fs::remove(path());
    remember(note);
    EXPECT_EQ(notes(), "- " + std::string(line) + "\n");
  }
}

TEST_F(PreferencesTest, LimitsTheNoteInBytes) {
  for (const std::size_t size : {1023U, 1024U}) {
    fs::remove(path());
    EXPECT_EQ(remember(std::string(size, 'x')), R"({"ok":true,"char_count":)" + std::to_string(size + 3) + "}");
  }
  const std::string before = notes();
  EXPECT_EQ(remember(std::string(1025, 'x')), tooLong);
  std::string twoByte;
  for (int i = 0; i < 512; ++i) twoByte += "\u00e4";
  EXPECT_EQ(remember(twoByte + "x"), tooLong);
  EXPECT_EQ(notes(), before);
  fs::remove(path());
  // Blanks at the ends do not count.
  EXPECT_EQ(remember("  " + twoByte + "\n"), R"({"ok":true,"char_count":515})");
}

TEST_F(PreferencesTest, LimitsTheFileInBytes) {
  for (const std::size_t size : {32767U, 32768U}) {
    writeFile(path(), std::string(size - 5, 'x') + "\n");  // the note adds four
    EXPECT_EQ(remember("y"), R"({"ok":true,"char_count":)" + std::to_string(size) + "}");
    EXPECT_EQ(notes().size(), size);
  }
  const std::string old = std::string(32764, 'x') + "\n";
  writeFile(path(), old);
  EXPECT_EQ(remember("y"), full);
  EXPECT_EQ(notes(), old);
  EXPECT_EQ(lastRecordLessTime(),
            "{\"tool\":\"remember_preference\",\"result\":\"error: preferences file is full (32 KB cap)\"}");
}

TEST_F(PreferencesTest, SeparatesFromTheExistingText) {
  const std::pair<std::string, std::string> cases[] = {{"", "- n\n"},
                                                       {"a", "a\n- n\n"},
                                                       {"a\n", "a\n- n\n"},
                                                       {"a\r\n", "a\r\n\n- n\n"},
                                                       {"\r\n", "\r\n\n- n\n"},
                                                       {"\n", "\n- n\n"},
                                                       {"a\r", "a\r\n- n\n"},
                                                       {"a\r\n\n", "a\r\n\n- n\n"},
                                                       {"a\n\r", "a\n\r\n- n\n"},
                                                       {"a\u2028", "a\u2028\n- n\n"}};
  for (const auto& [old, expected] : cases) {
    writeFile(path(), old);
    remember("n");
    EXPECT_EQ(notes(), expected);
  }
}

TEST_F(PreferencesTest, NeverReplacesWhatItCannotRead) {
  writeFile(path(), "ok \xff");
  EXPECT_EQ(
      remember("n"),
      "{\"error\":\"preferences file is not valid UTF-8\","
      "\"fix\":\"Open ~/.config/orvane/preferences.md and re-save as UTF-8 before remembering more — appending now "
      "would overwrite the file.\"}");
  EXPECT_EQ(notes(), "ok \xff");
  fs::remove(path());
  ASSERT_EQ(mkfifo(path().c_str(), 0600), 0);
  EXPECT_EQ(remember("n"), unreadable(EINVAL));
  EXPECT_TRUE(fs::is_fifo(path()));
  fs::remove(path());
  fs::create_directory(path());
  EXPECT_EQ(remember("n"), unreadable(EISDIR));
  fs::remove(path());
  fs::create_symlink("/dev/null", path());
  EXPECT_EQ(remember("n"), unreadable(EINVAL));
  fs::remove(path());
  fs::create_symlink("preferences.md", path());
  EXPECT_EQ(remember("n"), unreadable(ELOOP));
}

TEST_F(PreferencesTest, SaysWhyItCannotWrite) {
  writeFile(home_.file(".config"), "a file in the way");
  testing::internal::CaptureStderr();
  EXPECT_EQ(remember("n"), R"({"error":"could not write preferences","details":")" + errorText(EEXIST) + "\"}");
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "ContextAuditLog: open for write failed: " + home_.file(".config/orvane/mcp-context-reads.jsonl") + "\n");
}

TEST_F(PreferencesTest, SaysWhyTheFileCannotBeReplaced) {
  fs::create_directories(home_.file(".config/orvane"));
  fs::create_symlink(home_.file("gone/p.md"), path());
  EXPECT_EQ(remember("n"), R"({"error":"could not write preferences","details":")" + errorText(ENOENT) + "\"}");
  EXPECT_EQ(entries(), 2U);  // the link and the log
  EXPECT_EQ(lastRecordLessTime(), R"({"tool":"remember_preference","result":"error: could not write preferences"})");
}

TEST_F(PreferencesTest, ANoteIsLookedAtBeforeAnyFile) {
  writeFile(home_.file(".config"), "a file in the way");
  testing::internal::CaptureStderr();
  EXPECT_EQ(remember(" "), emptyNote);
  EXPECT_EQ(remember(std::string(1025, 'n')), tooLong);
  EXPECT_EQ(remember(1), required);
  testing::internal::GetCapturedStderr();
}

TEST_F(PreferencesTest, AFileInPlaceOfADirectoryIsNoNotes) {
  writeFile(home_.file(".config"), "a file in the way");
  testing::internal::CaptureStderr();
  EXPECT_EQ(read(), R"({"content":"","char_count":0})");
  testing::internal::GetCapturedStderr();
}

TEST_F(PreferencesTest, WritesThroughLinks) {
  writeFile(home_.file("dotfiles/p.md"), "old\n");
  fs::create_directories(home_.file(".config/orvane"));
  fs::create_symlink("../../dotfiles/p.md", path());
  remember("n");
  EXPECT_TRUE(fs::is_symlink(path()));
  EXPECT_EQ(readFile(home_.file("dotfiles/p.md")), "old\n- n\n");
  fs::remove(home_.file("dotfiles/p.md"));
  EXPECT_EQ(read(), R"({"content":"","char_count":0})");
  EXPECT_EQ(remember("n"), R"({"ok":true,"char_count":4})");
  EXPECT_TRUE(fs::is_symlink(path()));
  EXPECT_EQ(readFile(home_.file("dotfiles/p.md")), "- n\n");
}

TEST_F(PreferencesTest, LeavesNothingElseBehind) {
  remember("n");
  EXPECT_EQ(entries(), 2U);  // the notes and the log
}

}  // namespace
}  // namespace orvane::test
