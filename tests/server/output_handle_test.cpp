#include "server/output_handle.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <string>
#include <thread>

#include "core/descriptor.h"
#include "tests/support/sizes.h"

namespace orvane::test {
namespace {

TEST(OutputHandleTest, AfterALineThatWasCutNothingMoreIsWritten) {
  std::array<int, 2> ends{};
  ASSERT_EQ(pipe(ends.data()), 0);
  const auto before = std::signal(SIGPIPE, SIG_IGN);
  OutputHandle output(ends[1]);
  std::thread reader([&] {
    char byte = 0;
    EXPECT_EQ(read(ends[0], &byte, 1), 1);
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    close(ends[0]);
  });
  const std::string line(mebibyte, 'x');
  output.write(std::array<std::string_view, 2>{line, "\n"});
  reader.join();
  // The same number again, now for a pipe that works: a broken handle stays silent there too.
  std::array<int, 2> fresh{};
  ASSERT_EQ(pipe(fresh.data()), 0);
  ASSERT_EQ(dup2(fresh[1], ends[1]), ends[1]);
  output.write(std::array<std::string_view, 1>{"later\n"});
  ASSERT_EQ(fcntl(fresh[0], F_SETFL, O_NONBLOCK), 0);
  char byte = 0;
  EXPECT_EQ(read(fresh[0], &byte, 1), -1);
  for (const int end : {fresh[0], fresh[1], ends[1]}) close(end);
  std::signal(SIGPIPE, before);
}

TEST(OutputHandleTest, AFailureBetweenLinesIsForgotten) {
  std::array<int, 2> ends{};
  ASSERT_EQ(pipe(ends.data()), 0);
  const Descriptor readingEnd(ends[0]);
  const int number = ends[1];
  const int kept = dup(number);
  close(number);
  OutputHandle output(number);
  output.write(std::array<std::string_view, 1>{"lost\n"});
  ASSERT_EQ(dup2(kept, number), number);
  output.write(std::array<std::string_view, 2>{"", "kept\n"});
  close(kept);
  close(number);
  std::array<char, 20> buffer{};
  EXPECT_EQ(read(readingEnd.get(), buffer.data(), buffer.size()), 5);
  EXPECT_EQ(std::string(buffer.data()), "kept\n");
}

}  // namespace
}  // namespace orvane::test
