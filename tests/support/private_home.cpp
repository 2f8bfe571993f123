#include "tests/support/private_home.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace orvane::tests {

PrivateHome::PrivateHome() {
  std::string pattern = "/tmp/orvane-XXXXXX";
  if (mkdtemp(pattern.data()) == nullptr) {
    ADD_FAILURE() << "no temporary directory";
  }
  rootPath = pattern;
  homePath = rootPath + "/home";
  std::filesystem::create_directories(homePath);
  std::filesystem::create_directories(decoy());
  writeUserDatabase();
}

PrivateHome::~PrivateHome() {
  checkDecoy();
  std::error_code ignored;
  std::filesystem::remove_all(rootPath, ignored);
}

void PrivateHome::moveToSocketPathLength(std::size_t bytes) {
  const std::size_t tail = socketPath().size() - homePath.size();
  homePath = rootPath + "/";
  homePath.append(bytes - tail - homePath.size(), 'h');
  std::filesystem::create_directories(homePath);
  writeUserDatabase();
  EXPECT_EQ(socketPath().size(), bytes);
}

void PrivateHome::write(const std::string& relativePath, const std::string& content) const {
  writeFile(homePath + "/" + relativePath, content);
}

std::vector<std::string> PrivateHome::environment() const {
  return {"HOME=" + decoy(), "NSS_WRAPPER_PASSWD=" + rootPath + "/passwd", "NSS_WRAPPER_GROUP=" + rootPath + "/group"};
}

void PrivateHome::checkDecoy() const {
  EXPECT_TRUE(std::filesystem::is_empty(decoy())) << "the program wrote into the directory that HOME names";
}

void PrivateHome::writeUserDatabase() const {
  const std::string uid = std::to_string(getuid());
  const std::string gid = std::to_string(getgid());
  std::string users = "tester:x:" + uid + ":" + gid + ":Tester:" + homePath + ":/bin/sh\n";
  if (getuid() != 0) {
    // A process that uid_wrapper takes for root is to find the same home.
    users += "root:x:0:0:Root:" + homePath + ":/bin/sh\n";
  }
  writeFile(rootPath + "/passwd", users);
  writeFile(rootPath + "/group", "testers:x:" + gid + ":\n");
}

void writeFile(const std::string& path, const std::string& content) {
  std::filesystem::create_directories(std::filesystem::path(path).parent_path());
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file << content;
  file.close();
  EXPECT_TRUE(file.good()) << "cannot write " << path;
}

}  // namespace orvane::tests
