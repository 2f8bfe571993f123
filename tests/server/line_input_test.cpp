// Whatever the kind of descriptor: lines come out whole and in order, and once a line is taken, exactly what follows
// its line feed is left for whoever reads the descriptor next.
#include "server/line_input.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

#include "core/descriptor.h"
#include "core/descriptor_io.h"
#include "tests/support/sizes.h"

namespace orvane::test {
namespace {

/// A descriptor to read lines from, and the one that its bytes are written to.
struct Stream {
  Descriptor input;
  Descriptor writer;
};

Stream openPipe() {
  std::array<int, 2> ends{};
  EXPECT_EQ(pipe(ends.data()), 0);
  return {Descriptor(ends[0]), Descriptor(ends[1])};
}

Stream openSocketPair() {
  std::array<int, 2> ends{};
  EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()), 0);
  return {Descriptor(ends[0]), Descriptor(ends[1])};
}

Stream openRegularFile() {
  std::array<char, 32> path{"/tmp/orvane-lines-XXXXXX"};
  const int writer = mkstemp(path.data());
  EXPECT_GE(writer, 0);
  Stream stream{Descriptor(open(path.data(), O_RDONLY)), Descriptor(writer)};
  unlink(path.data());
  return stream;
}

Stream openTerminal() {
  const int primary = posix_openpt(O_RDWR | O_NOCTTY);
  EXPECT_GE(primary, 0);
  EXPECT_EQ(grantpt(primary), 0);
  EXPECT_EQ(unlockpt(primary), 0);
  const int secondary = open(ptsname(primary), O_RDWR | O_NOCTTY);
  EXPECT_GE(secondary, 0);
  termios settings{};
  EXPECT_EQ(tcgetattr(secondary, &settings), 0);
  cfmakeraw(&settings);
  EXPECT_EQ(tcsetattr(secondary, TCSANOW, &settings), 0);
  return {Descriptor(secondary), Descriptor(primary)};
}

struct Kind {
  const char* name;
  Stream (*open)();
  bool ends;         ///< reading finds the end when the writer is closed
  bool waits;        ///< reading waits for data that is not there yet
  std::size_t room;  ///< bytes that can wait unread
};

void PrintTo(const Kind& kind, std::ostream* stream) { *stream << kind.name; }

class LineInputTest : public testing::TestWithParam<Kind> {
 protected:
  void write(std::string_view bytes) const { ASSERT_EQ(writeFully(stream_.writer.get(), bytes), 0); }

  /// The next line, its line feed included; shorter at the end.
  std::string takeLine() {
    std::string line;
    while (true) {
      const std::string_view bytes = input_.take();
      if (bytes.empty()) return line;
      line += bytes;
      const std::size_t feed = bytes.find('\n');
      EXPECT_TRUE(feed == std::string_view::npos || feed == bytes.size() - 1) << "bytes of two lines at once";
      if (bytes.back() == '\n') return line;
    }
  }

  /// Reads up to `count` bytes from the descriptor itself, as a child process would that inherits it.
  std::string readDirectly(std::size_t count) const {
    std::string bytes(count, '\0');
    std::size_t have = 0;
    while (have < count) {
      const ssize_t received = read(stream_.input.get(), bytes.data() + have, count - have);
      if (received <= 0) break;
      have += static_cast<std::size_t>(received);
    }
    bytes.resize(have);
    return bytes;
  }

  void closeWriter() { stream_.writer = Descriptor(); }

  Stream stream_ = GetParam().open();
  LineInput input_{stream_.input.get()};
};

TEST_P(LineInputTest, LeavesExactlyWhatFollowsTheLine) {
  write("first\nsecond\n\nfourth\n");
  EXPECT_EQ(takeLine(), "first\n");
  EXPECT_EQ(readDirectly(15), "second\n\nfourth\n");
}

TEST_P(LineInputTest, LeavesWhatFollowsAfterEveryLine) {
  const std::vector<std::string> lines = {
      "one\n", "\n", "\n", std::string(1000, 'x') + "\n", std::string("a\0b\n", 4), "\xFF\xFE\n", "last\n"};
  std::string all;
  for (const std::string& line : lines) all += line;
  for (std::size_t taken = 0; taken <= lines.size(); ++taken) {
    Stream stream = GetParam().open();
    ASSERT_EQ(writeFully(stream.writer.get(), all), 0);
    stream_ = std::move(stream);
    LineInput input(stream_.input.get());
    std::string line;
    for (std::size_t i = 0; i < taken; ++i) {
      line.clear();
      while (line.empty() || line.back() != '\n') line += input.take();
      EXPECT_EQ(line, lines[i]);
    }
    std::string rest;
    for (std::size_t i = taken; i < lines.size(); ++i) rest += lines[i];
    EXPECT_EQ(readDirectly(rest.size()), rest) << taken;
  }
}

TEST_P(LineInputTest, AnUnfinishedNextLineIsLeftToo) {
  write("line\nbegun");
  EXPECT_EQ(takeLine(), "line\n");
  EXPECT_EQ(readDirectly(5), "begun");
}

TEST_P(LineInputTest, GoesOnAfterSomeoneElseHasRead) {
  write("one\ntwo\nthree\nfour\n");
  EXPECT_EQ(takeLine(), "one\n");
  EXPECT_EQ(readDirectly(4), "two\n");
  ASSERT_EQ(takeLine(), "three\n");
  EXPECT_EQ(takeLine(), "four\n");
}

TEST_P(LineInputTest, ManyLinesComeInOrder) {
  std::string lines;
  for (int i = 0; i < 200; ++i) lines += "line " + std::to_string(i) + "\n";
  ASSERT_LT(lines.size(), GetParam().room);
  write(lines);
  std::string taken;
  for (int i = 0; i < 200; ++i) taken += takeLine();
  EXPECT_EQ(taken, lines);
}

TEST_P(LineInputTest, TheEndIsFoundAndFoundAgain) {
  if (!GetParam().ends) {
    // A terminal reports a hang-up by an error, which counts as the end.
    write("line\n");
    EXPECT_EQ(takeLine(), "line\n");
    closeWriter();
    EXPECT_EQ(takeLine(), "");
    EXPECT_EQ(takeLine(), "");
    return;
  }
  write("line\nunfinished");
  closeWriter();
  EXPECT_EQ(takeLine(), "line\n");
  EXPECT_EQ(takeLine(), "unfinished");
  EXPECT_EQ(takeLine(), "");
  EXPECT_EQ(takeLine(), "");
}

TEST_P(LineInputTest, LinesInPiecesAreWaitedFor) {
  if (!GetParam().waits) {
    // A file that grows has its end where it is looked at, and more later.
    write("be");
    EXPECT_EQ(takeLine(), "be");
    write("gun\nnext\n");
    EXPECT_EQ(takeLine(), "gun\n");
    EXPECT_EQ(readDirectly(10), "next\n");
    return;
  }
  const std::string line = "a line in pieces\n";
  std::thread writer([&] {
    for (const char byte : line) {
      write({&byte, 1});
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    write("next\n");
  });
  EXPECT_EQ(takeLine(), line);
  writer.join();
  EXPECT_EQ(readDirectly(5), "next\n");
}

TEST_P(LineInputTest, LinesOfAMebibyteComeWholeAndNothingBeyondThem) {
  const std::string first(mebibyte, 'x');
  const std::string second(mebibyte + 7, 'y');
  std::thread writer([&] { write(first + "\n" + second + "\nrest\n"); });
  // A file is not waited for.
  if (!GetParam().waits) writer.join();
  EXPECT_TRUE(takeLine() == first + "\n");
  EXPECT_TRUE(takeLine() == second + "\n");
  EXPECT_EQ(readDirectly(5), "rest\n");
  if (writer.joinable()) writer.join();
}

TEST_P(LineInputTest, NonBlockingDescriptorsAreWaitedFor) {
  ASSERT_EQ(fcntl(stream_.input.get(), F_SETFL, fcntl(stream_.input.get(), F_GETFL) | O_NONBLOCK), 0);
  if (!GetParam().waits) {
    write("line\nnext\n");
    EXPECT_EQ(takeLine(), "line\n");
    EXPECT_EQ(takeLine(), "next\n");
    return;
  }
  std::thread writer([&] {
    for (const char* piece : {"li", "ne\n", "ne", "xt\n"}) {
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
      write(piece);
    }
  });
  EXPECT_EQ(takeLine(), "line\n");
  EXPECT_EQ(takeLine(), "next\n");
  writer.join();
}

TEST_P(LineInputTest, SignalsInterruptNothing) {
  if (!GetParam().waits) {
    write("line\n");
    EXPECT_EQ(takeLine(), "line\n");
    return;
  }
  struct sigaction nothing {};
  struct sigaction before {};
  nothing.sa_handler = [](int) {};
  ASSERT_EQ(sigaction(SIGUSR1, &nothing, &before), 0);
  const pthread_t reader = pthread_self();
  std::thread writer([&] {
    for (const char* piece : {"a", "b", "c\n", "next\n"}) {
      for (int i = 0; i < 5; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
        pthread_kill(reader, SIGUSR1);
      }
      write(piece);
    }
  });
  EXPECT_EQ(takeLine(), "abc\n");
  EXPECT_EQ(takeLine(), "next\n");
  writer.join();
  sigaction(SIGUSR1, &before, nullptr);
}

INSTANTIATE_TEST_SUITE_P(Descriptors, LineInputTest,
                         testing::Values(Kind{"pipe", openPipe, true, true, 60000},
                                         Kind{"socketPair", openSocketPair, true, true, 60000},
                                         Kind{"regularFile", openRegularFile, true, false, mebibyte},
                                         Kind{"terminal", openTerminal, false, true, 4000}),
                         [](const auto& parameter) { return std::string(parameter.param.name); });

}  // namespace
}  // namespace orvane::test
