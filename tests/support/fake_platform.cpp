#include "tests/support/fake_platform.h"

#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>

namespace orvane::test {

FakePlatform& fakePlatform() {
  static FakePlatform platform;
  return platform;
}

FakeHome::FakeHome() {
  std::string pattern = std::filesystem::temp_directory_path() / "orvane-test-XXXXXX";
  if (mkdtemp(pattern.data()) == nullptr) std::abort();
  path_ = std::filesystem::canonical(pattern);
  fakePlatform() = FakePlatform{};
  fakePlatform().home = path_;
}

FakeHome::~FakeHome() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::string FakeHome::configurationFile(const std::string& name) const {
  std::filesystem::create_directories(file(".config/orvane"));
  return file(".config/orvane/" + name);
}

}  // namespace orvane::test

namespace orvane::platform {

std::string homeDirectory() { return test::fakePlatform().home; }

std::optional<std::string> applicationSupportDirectory() { return test::fakePlatform().applicationSupport; }

std::vector<std::string> preferencesStringArray(const std::string& domain, const std::string& key) {
  const auto& preferences = test::fakePlatform().preferences;
  const auto found = preferences.find({domain, key});
  return found == preferences.end() ? std::vector<std::string>{} : found->second;
}

void playSystemSound(const std::string& name) { test::fakePlatform().soundsPlayed.push_back(name); }

Peer peerOf(int socket) {
  if (test::fakePlatform().onPeerLookup) test::fakePlatform().onPeerLookup(socket);
  return test::fakePlatform().peer.value_or(Peer{0, getuid()});
}

}  // namespace orvane::platform
