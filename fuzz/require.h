// What a fuzz target holds to be true of any input.
#pragma once

#include <cstdio>
#include <cstdlib>

namespace orvane::fuzz {

/// Ends the process with `rule`, so that the fuzzer keeps the input, unless `holds`.
inline void require(bool holds, const char* rule) {
  if (holds) return;
  std::fprintf(stderr, "broken rule: %s\n", rule);
  std::abort();
}

}  // namespace orvane::fuzz
