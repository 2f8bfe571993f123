#include "tests/support/private_home.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "tests/support/file_content.h"

namespace orvane::test {

PrivateHome::PrivateHome() {
  std::string pattern = "/tmp/orvane-XXXXXX";
  if (mkdtemp(pattern.data()) == nullptr) {
    ADD_FAILURE() << "no temporary directory";
  }
  rootPath_ = pattern;
  homePath_ = rootPath_ + "/home";
  std::filesystem::create_directories(homePath_);
  std::filesystem::create_directories(decoy());
  writeUserDatabase();
}

PrivateHome::~PrivateHome() {
  checkDecoy();
  std::error_code ignored;
  std::filesystem::remove_all(rootPath_, ignored);
}

void PrivateHome::moveToSocketPathLength(std::size_t bytes) {
  const std::size_t tail = socketPath().size() - homePath_.size();
  homePath_ = rootPath_ + "/";
  homePath_.append(bytes - tail - homePath_.size(), 'h');
  std::filesystem::create_directories(homePath_);
  writeUserDatabase();
  EXPECT_EQ(socketPath().size(), bytes);
}

void PrivateHome::write(const std::string& relativePath, const std::string& content) const {
  writeFile(homePath_ + "/" + relativePath, content);
}

std::vector<std::string> PrivateHome::environment() const {
  return {"HOME=" + decoy(), "NSS_WRAPPER_PASSWD=" + rootPath_ + "/passwd",
          "NSS_WRAPPER_GROUP=" + rootPath_ + "/group"};
}

void PrivateHome::checkDecoy() const {
  EXPECT_TRUE(std::filesystem::is_empty(decoy())) << "the program wrote into the directory that HOME names";
}

void PrivateHome::writeUserDatabase() const {
  const std::string uid = std::to_string(getuid());
  const std::string gid = std::to_string(getgid());
  const std::string users = "tester:x:" + uid + ":" + gid + ":Tester:" + homePath_ + ":/bin/sh\n";
  writeFile(rootPath_ + "/passwd", users);
  writeFile(rootPath_ + "/group", "testers:x:" + gid + ":\n");
}

}  // namespace orvane::test
