#include "core/rpc_error.h"

#include <gtest/gtest.h>

namespace orvane::test {
namespace {

TEST(RPCErrorTest, SaysItsMessageToWhoeverCatchesAnyException) {
  try {
    throw RPCError(rpc_code::invalidParams, "no such thing", JSON("more"));
  } catch (const std::exception& error) {
    EXPECT_STREQ(error.what(), "no such thing");
  }
}

}  // namespace
}  // namespace orvane::test
