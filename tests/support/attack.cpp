#include "tests/support/attack.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <utility>

namespace orvane::test {

namespace {

// Less than 70 bytes for each of 2,000 calls, and less than a thousandth of what 50 floods bring.
constexpr std::size_t tolerance = 131072;

std::string kibibytes(std::optional<std::size_t> bytes) {
  return bytes ? std::to_string(*bytes / 1024) + " KiB" : "not measured";
}

}  // namespace

int errorCode(const Json& response) {
  const Json* error = response.get_object().if_contains("error");
  return error == nullptr ? 0 : static_cast<int>(error->at("code").as_int64());
}

Attack::Attack(ServerProcess& server, std::string name)
    : server_(server),
      name_(std::move(name)),
      descriptors_(server.openDescriptorCount()),
      memory_(server.ownMemory()) {}

Json Attack::request(std::string_view line) {
  Json response = server_.request(line);
  ++answers_;
  if (response.is_object() && errorCode(response) != 0) ++errors_;
  return response;
}

void Attack::expectNothingKept() const {
  const std::size_t descriptors = server_.openDescriptorCount();
  const std::optional<std::size_t> memory = server_.ownMemory();
  EXPECT_EQ(descriptors, descriptors_);
  if (memory && memory_) {
    EXPECT_LE(*memory, *memory_ + tolerance);
  }
  const std::string figures = std::to_string(answers_) + " answers, " + std::to_string(errors_) +
                              " of them errors; descriptors " + std::to_string(descriptors_) + ", " +
                              std::to_string(descriptors) + "; memory of its own " + kibibytes(memory_) + ", " +
                              kibibytes(memory);
  std::printf("%s: %s\n", name_.c_str(), figures.c_str());
  ::testing::Test::RecordProperty(name_, figures);
}

}  // namespace orvane::test
