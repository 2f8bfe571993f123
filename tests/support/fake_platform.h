// Who the user is and what is the user's, under a unit test's control. Linking this replaces the system's answers.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/platform.h"

namespace orvane::test {

struct FakePlatform {
  std::string home = "/nonexistent/home";
  std::optional<std::string> applicationSupport;
  /// Keyed by domain and key.
  std::map<std::pair<std::string, std::string>, std::vector<std::string>> preferences;
  std::vector<std::string> soundsPlayed;
  /// What peerOf answers; the real answer when absent.
  std::optional<platform::Peer> peer;
  /// Called with the connected socket before peerOf answers, if set.
  std::function<void(int)> onPeerLookup;
};

/// The one that platform functions ask.
FakePlatform& fakePlatform();

/// Resets the answers to their defaults, with a fresh temporary directory as home, and removes it at the end.
class FakeHome {
 public:
  FakeHome();
  ~FakeHome();
  FakeHome(const FakeHome&) = delete;
  FakeHome& operator=(const FakeHome&) = delete;

  const std::string& path() const { return path_; }
  /// `name` under the home directory.
  std::string file(const std::string& name) const { return path_ + "/" + name; }
  /// `name` in the configuration directory, which is made.
  std::string configurationFile(const std::string& name) const;

 private:
  std::string path_;
};

}  // namespace orvane::test
