#include "core/error_text.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <string>

namespace orvane::test {
namespace {

TEST(ErrorTextTest, IsTheSystemsSentenceAndTheNumber) {
  for (const int number : {EAGAIN, ECONNRESET, EPIPE, ENOENT, EACCES, ENOTDIR, 0, 99999}) {
    EXPECT_EQ(errorText(number), std::string(std::strerror(number)) + " (errno " + std::to_string(number) + ")");
  }
}

}  // namespace
}  // namespace orvane::test
