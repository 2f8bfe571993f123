// How many tools there are, for the tests in C++; tests/support/program.mjs has the same for those in JavaScript.
#pragma once

#include <cstddef>

namespace orvane::test {

inline constexpr std::size_t toolCount = 42;

}  // namespace orvane::test
