#include "core/files.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <thread>

#include "core/error_text.h"
#include "tests/support/fake_platform.h"
#include "tests/support/file_content.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;

class FilesTest : public testing::Test {
 protected:
  FilesTest() : oldMask_(umask(022)) {}
  ~FilesTest() override { umask(oldMask_); }

  static int errorOf(const std::variant<std::string, FileError>& outcome) {
    const FileError* error = std::get_if<FileError>(&outcome);
    return error == nullptr ? 0 : error->number;
  }
  static int errorOf(const FileOutcome& outcome) { return outcome ? outcome->number : 0; }
  static mode_t modeOf(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(stat(path.c_str(), &status), 0);
    return status.st_mode & 07777;
  }
  std::vector<std::string> entries(const std::string& directory) const {
    std::vector<std::string> names = listDirectory(directory).value();
    std::sort(names.begin(), names.end());
    return names;
  }
  // Runs `body` in a process of its own and gives its exit status.
  template <class Body>
  static int inChild(Body body) {
    const pid_t child = fork();
    if (child == 0) _exit(body());
    int status = -1;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  FakeHome home_;

 private:
  mode_t oldMask_;
};

TEST_F(FilesTest, ReadsAllBytes) {
  for (const std::size_t size : {0U, 1U, 4096U, 1000000U}) {
    std::string content(size, '\0');
    for (std::size_t i = 0; i < size; ++i) content[i] = static_cast<char>(i * 7);
    writeFile(home_.file("f"), content);
    const auto outcome = readWholeFile(home_.file("f"));
    ASSERT_EQ(errorOf(outcome), 0);
    EXPECT_EQ(std::get<std::string>(outcome), content);
  }
}

TEST_F(FilesTest, ReadsOnlyRegularFiles) {
  EXPECT_EQ(errorOf(readWholeFile(home_.file("absent"))), ENOENT);
  EXPECT_EQ(errorOf(readWholeFile(home_.path())), EISDIR);
  EXPECT_EQ(errorOf(readWholeFile("/dev/null")), EINVAL);
  ASSERT_EQ(mkfifo(home_.file("fifo").c_str(), 0600), 0);
  EXPECT_EQ(errorOf(readWholeFile(home_.file("fifo"))), EINVAL);
  fs::create_symlink("fifo", home_.file("link"));
  EXPECT_EQ(errorOf(readWholeFile(home_.file("link"))), EINVAL);
  EXPECT_EQ((FileError{ENOENT}.description()), errorText(ENOENT));
}

TEST_F(FilesTest, ReadsThroughLinks) {
  writeFile(home_.file("f"), "text");
  fs::create_symlink("f", home_.file("link"));
  EXPECT_EQ(readTextFile(home_.file("link")), "text");
}

TEST_F(FilesTest, TextIsValidUTF8) {
  writeFile(home_.file("f"), "\u00e4");
  EXPECT_EQ(readTextFile(home_.file("f")), "\u00e4");
  writeFile(home_.file("f"), "a\xff");
  EXPECT_EQ(readTextFile(home_.file("f")), std::nullopt);
  EXPECT_EQ(readTextFile(home_.file("absent")), std::nullopt);
}

TEST_F(FilesTest, ListsADirectory) {
  EXPECT_EQ(listDirectory(home_.path())->size(), 0U);
  writeFile(home_.file("b/f"), "");
  writeFile(home_.file(".a"), "");
  EXPECT_EQ(entries(home_.path()), (std::vector<std::string>{".a", "b"}));
  EXPECT_EQ(listDirectory(home_.file(".a")), std::nullopt);
  EXPECT_EQ(listDirectory(home_.file("absent")), std::nullopt);
}

TEST_F(FilesTest, MakesDirectories) {
  EXPECT_EQ(errorOf(createDirectories(home_.file("a/b/c"))), 0);
  EXPECT_EQ(modeOf(home_.file("a/b")), 0755U);
  EXPECT_EQ(errorOf(createDirectories(home_.file("a/b/c"))), 0);
  EXPECT_EQ(errorOf(createDirectories(home_.file("d/e/"))), 0);
  EXPECT_TRUE(fs::is_directory(home_.file("d/e")));
  fs::create_directory_symlink("a", home_.file("link"));
  EXPECT_EQ(errorOf(createDirectories(home_.file("link/x"))), 0);
  EXPECT_TRUE(fs::is_directory(home_.file("a/x")));
}

TEST_F(FilesTest, RelativePathsAreMeantFromTheWorkingDirectory) {
  const fs::path before = fs::current_path();
  fs::current_path(home_.path());
  EXPECT_EQ(errorOf(createDirectories("d")), 0);
  EXPECT_EQ(errorOf(createDirectories("e/f")), 0);
  EXPECT_EQ(errorOf(replaceFile("new", "x")), 0);
  EXPECT_EQ(errorOf(replaceFile("new", "y")), 0);
  fs::create_symlink("new", "link");
  EXPECT_EQ(errorOf(replaceFile("link", "z")), 0);
  fs::current_path(before);
  EXPECT_EQ(entries(home_.path()), (std::vector<std::string>{"d", "e", "link", "new"}));
  EXPECT_EQ(entries(home_.file("e")), std::vector<std::string>{"f"});
  EXPECT_EQ(readFile(home_.file("new")), "z");
}

TEST_F(FilesTest, ANameThatNoFileSystemTakesIsAnError) {
  const std::string path = home_.file(std::string(5000, 'x'));
  EXPECT_EQ(errorOf(readWholeFile(path)), ENAMETOOLONG);
  EXPECT_EQ(errorOf(createDirectories(path)), ENAMETOOLONG);
  EXPECT_EQ(errorOf(replaceFile(path, "x")), ENAMETOOLONG);
}

TEST_F(FilesTest, AFileInTheWayOfADirectoryIsAnError) {
  writeFile(home_.file("f"), "");
  EXPECT_EQ(errorOf(createDirectories(home_.file("f"))), EEXIST);
  EXPECT_EQ(errorOf(createDirectories(home_.file("f/a/b"))), EEXIST);
}

TEST_F(FilesTest, ReplaceMakesAndReplaces) {
  EXPECT_EQ(errorOf(replaceFile(home_.file("f"), "one")), 0);
  EXPECT_EQ(readFile(home_.file("f")), "one");
  EXPECT_EQ(errorOf(replaceFile(home_.file("f"), "")), 0);
  EXPECT_EQ(readFile(home_.file("f")), "");
  EXPECT_EQ(entries(home_.path()), std::vector<std::string>{"f"});
}

TEST_F(FilesTest, NewFilesFollowTheUmask) {
  umask(027);
  ASSERT_EQ(errorOf(replaceFile(home_.file("f"), "x")), 0);
  EXPECT_EQ(modeOf(home_.file("f")), 0640U);
}

TEST_F(FilesTest, ReplaceKeepsPermissions) {
  umask(077);
  for (const mode_t mode : std::initializer_list<mode_t>{0600, 0644, 0666, 0400}) {
    writeFile(home_.file("f"), "old");
    ASSERT_EQ(chmod(home_.file("f").c_str(), mode), 0);
    ASSERT_EQ(errorOf(replaceFile(home_.file("f"), "new")), 0);
    EXPECT_EQ(modeOf(home_.file("f")), mode);
    EXPECT_EQ(readFile(home_.file("f")), "new");
    fs::remove(home_.file("f"));
  }
}

TEST_F(FilesTest, ReplaceFollowsLinks) {
  writeFile(home_.file("d/target"), "old");
  fs::create_symlink("target", home_.file("d/second"));
  fs::create_symlink("d/second", home_.file("relative"));
  fs::create_symlink(home_.file("d/target"), home_.file("absolute"));
  for (const char* link : {"relative", "absolute"}) {
    ASSERT_EQ(errorOf(replaceFile(home_.file(link), link)), 0);
    EXPECT_TRUE(fs::is_symlink(home_.file(link)));
    EXPECT_EQ(readFile(home_.file("d/target")), link);
  }
  EXPECT_TRUE(fs::is_symlink(home_.file("d/second")));
  EXPECT_EQ(entries(home_.file("d")), (std::vector<std::string>{"second", "target"}));
}

TEST_F(FilesTest, ReplaceWritesThroughADanglingLink) {
  fs::create_directory(home_.file("d"));
  fs::create_symlink("d/new", home_.file("link"));
  ASSERT_EQ(errorOf(replaceFile(home_.file("link"), "x")), 0);
  EXPECT_TRUE(fs::is_symlink(home_.file("link")));
  EXPECT_EQ(readFile(home_.file("d/new")), "x");
  fs::create_symlink("nowhere/new", home_.file("lost"));
  EXPECT_EQ(errorOf(replaceFile(home_.file("lost"), "x")), ENOENT);
}

TEST_F(FilesTest, ReplaceEndsAtLinksInACircle) {
  fs::create_symlink("b", home_.file("a"));
  fs::create_symlink("a", home_.file("b"));
  EXPECT_EQ(errorOf(replaceFile(home_.file("a"), "x")), ELOOP);
}

TEST_F(FilesTest, ReplaceTakesOnlyRegularFiles) {
  EXPECT_EQ(errorOf(replaceFile(home_.path(), "x")), EISDIR);
  ASSERT_EQ(mkfifo(home_.file("fifo").c_str(), 0600), 0);
  EXPECT_EQ(errorOf(replaceFile(home_.file("fifo"), "x")), EINVAL);
  fs::create_symlink("/dev/null", home_.file("null"));
  EXPECT_EQ(errorOf(replaceFile(home_.file("null"), "x")), EINVAL);
  EXPECT_EQ(errorOf(replaceFile(home_.file("absent/f"), "x")), ENOENT);
  EXPECT_EQ(entries(home_.path()), (std::vector<std::string>{"fifo", "null"}));
}

TEST_F(FilesTest, AFileSizeLimitLeavesTheOldFile) {
  writeFile(home_.file("f"), "old");
  const std::string path = home_.file("f");
  EXPECT_EQ(inChild([&] {
              std::signal(SIGXFSZ, SIG_IGN);
              const rlimit limit{1000, 1000};
              if (setrlimit(RLIMIT_FSIZE, &limit) != 0) return 200;
              return errorOf(replaceFile(path, std::string(5000, 'x')));
            }),
            EFBIG);
  EXPECT_EQ(readFile(path), "old");
  EXPECT_EQ(entries(home_.path()), std::vector<std::string>{"f"});
}

TEST_F(FilesTest, AReadOnlyDirectoryLeavesTheOldFile) {
  const std::string path = home_.file("d/f");
  writeFile(path, "old");
  ASSERT_EQ(chmod(home_.path().c_str(), 0755), 0);
  ASSERT_EQ(chmod(path.c_str(), 0666), 0);
  ASSERT_EQ(chmod(home_.file("d").c_str(), 0555), 0);
  EXPECT_EQ(inChild([&] {
              // Permissions bind everyone but root.
              if (getuid() == 0 && setuid(65534) != 0) return 200;
              return errorOf(replaceFile(path, "new"));
            }),
            EACCES);
  EXPECT_EQ(inChild([&] {
              if (getuid() == 0 && setuid(65534) != 0) return 200;
              return errorOf(createDirectories(path.substr(0, path.rfind('/')) + "/new"));
            }),
            EACCES);
  ASSERT_EQ(chmod(home_.file("d").c_str(), 0755), 0);
  EXPECT_EQ(readFile(path), "old");
  EXPECT_EQ(entries(home_.file("d")), std::vector<std::string>{"f"});
}

TEST_F(FilesTest, ReadersNeverSeeAPart) {
  const std::string path = home_.file("f");
  const std::string contents[] = {std::string(30000, 'a'), std::string(20000, 'b')};
  ASSERT_EQ(errorOf(replaceFile(path, contents[0])), 0);
  std::atomic<bool> ending = false;
  std::atomic<int> readers = 0;
  std::atomic<int> broken = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < 100; ++i) {
    threads.emplace_back([&] {
      bool first = true;
      while (!ending) {
        const std::optional<std::string> seen = readTextFile(path);
        if (seen != contents[0] && seen != contents[1]) ++broken;
        if (std::exchange(first, false)) ++readers;
      }
    });
  }
  while (readers < 100) std::this_thread::yield();
  for (std::size_t i = 0; i < 100; ++i) EXPECT_EQ(errorOf(replaceFile(path, contents[i % 2])), 0);
  ending = true;
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(broken, 0);
}

}  // namespace
}  // namespace orvane::test
