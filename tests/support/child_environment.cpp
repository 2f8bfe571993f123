#include "tests/support/child_environment.h"

#include <cstdlib>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ORVANE_CLANG_ASAN 1
#endif
#endif

namespace orvane::test {

namespace {

// A sanitizer whose runtime is a shared library wants to be loaded before anything else.
std::string sanitizerRuntime() {
#if defined(__SANITIZE_ADDRESS__) && !defined(__clang__)
  return ORVANE_ASAN_RUNTIME;
#elif defined(__SANITIZE_THREAD__) && !defined(__clang__)
  return ORVANE_TSAN_RUNTIME;
#else
  return "";
#endif
}

}  // namespace

std::vector<std::string> childEnvironment(const PrivateHome& home, const Launch& launch) {
  std::vector<std::string> environment = home.environment();
  std::string preload = sanitizerRuntime();
  std::vector<std::string> libraries = launch.preload;
  libraries.emplace_back("libnss_wrapper.so");
  for (const std::string& library : libraries) {
    preload += (preload.empty() ? "" : ":") + library;
  }
  environment.push_back("LD_PRELOAD=" + preload);
  environment.emplace_back("PATH=/usr/bin:/bin");
  for (const char* name : {"UBSAN_OPTIONS", "LSAN_OPTIONS", "TSAN_OPTIONS", "LLVM_PROFILE_FILE", "GCOV_PREFIX"}) {
    if (const char* value = std::getenv(name)) {
      environment.push_back(std::string(name) + "=" + value);
    }
  }
  std::string addressOptions;
  if (const char* value = std::getenv("ASAN_OPTIONS")) {
    addressOptions = value;
  }
#ifdef ORVANE_CLANG_ASAN
  // Linked in statically, so the preloaded wrapper cannot come first; the check would stop the program.
  addressOptions += (addressOptions.empty() ? "" : ":") + std::string("verify_asan_link_order=0");
#endif
  if (!addressOptions.empty()) {
    environment.push_back("ASAN_OPTIONS=" + addressOptions);
  }
  environment.insert(environment.end(), launch.environment.begin(), launch.environment.end());
  return environment;
}

std::vector<char*> pointersTo(std::vector<std::string>& strings) {
  std::vector<char*> pointers;
  for (std::string& text : strings) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

}  // namespace orvane::test
