// A home directory for one test of the real program: the user database is steered there by nss_wrapper, while HOME
// names a decoy in which nothing may ever appear. The object owns both directories and removes them.
#pragma once

#include <string>
#include <vector>

namespace orvane::test {

class PrivateHome {
 public:
  PrivateHome();
  ~PrivateHome();
  PrivateHome(const PrivateHome&) = delete;
  PrivateHome& operator=(const PrivateHome&) = delete;

  /// The directory that holds everything this object made, for files a test needs beside the home.
  const std::string& root() const { return rootPath_; }
  /// The home directory that the user database reports.
  const std::string& path() const { return homePath_; }
  /// The directory that HOME names.
  std::string decoy() const { return rootPath_ + "/decoy"; }
  /// Where the application listens.
  std::string socketPath() const { return homePath_ + "/Library/Application Support/Orvane/mcp.sock"; }

  /// Moves the home so that the application's socket path has exactly `bytes` bytes.
  void moveToSocketPathLength(std::size_t bytes);

  /// Writes `content` to `relativePath` under the home, with the directories on the way.
  void write(const std::string& relativePath, const std::string& content) const;

  /// The environment that makes a child see this home, as NAME=value.
  std::vector<std::string> environment() const;

 private:
  // Fails the running test if anything was created there.
  void checkDecoy() const;
  void writeUserDatabase() const;

  std::string rootPath_;
  std::string homePath_;
};

}  // namespace orvane::test
