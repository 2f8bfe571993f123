// Whole files, written and read by the tests themselves.
#pragma once

#include <string>

namespace orvane::test {

/// Writes `content` to the file at `path`, with the directories on the way; fails the test if that is impossible.
void writeFile(const std::string& path, const std::string& content);

/// The bytes of the file at `path`; fails the test if it cannot be read.
std::string readFile(const std::string& path);

}  // namespace orvane::test
