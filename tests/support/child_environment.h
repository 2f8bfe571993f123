// The environment in which the tests start the real program: the private home, and what a sanitizer's runtime needs.
#pragma once

#include <string>
#include <vector>

#include "tests/support/server_process.h"

namespace orvane::test {

/// The whole environment of the child, as NAME=value.
std::vector<std::string> childEnvironment(const PrivateHome& home, const Launch& launch);

/// Pointers to the texts and a null pointer, as execve takes them. Good for as long as `strings` is.
std::vector<char*> pointersTo(std::vector<std::string>& strings);

}  // namespace orvane::test
