// Sizes that limits are stated in.
#pragma once

#include <cstddef>

namespace orvane::test {

inline constexpr std::size_t mebibyte = 1048576;

}  // namespace orvane::test
