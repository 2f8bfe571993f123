// The home directory, as the user database tells it.
#include <unistd.h>

#include "tests/support/file_content.h"
#include "tests/support/server_test.h"

namespace orvane::test {
namespace {

class HomeTest : public ServerTest {
 protected:
  void SetUp() override { home_.write(".config/orvane/settings.json", R"({"llmModel":"found"})"); }

  // Makes this the only entry of the user database.
  void setEntry(uid_t user, const std::string& fullName, const std::string& directory) const {
    writeFile(home_.root() + "/passwd", "tester:x:" + std::to_string(user) + ":" + std::to_string(getgid()) + ":" +
                                            fullName + ":" + directory + ":/bin/sh\n");
  }

  bool isHomeFound() {
    auto server = start();
    const Json settings = toolResult(server->request(toolCall("current_settings")));
    expectCleanEnd(*server);
    return settings.at("llmModel") == "found";
  }
};

TEST_F(HomeTest, AnEntryOfAnyLengthIsRead) {
  for (const std::size_t length : {0U, 900U, 1024U, 5000U}) {
    setEntry(getuid(), std::string(length, 'n'), home_.path());
    EXPECT_TRUE(isHomeFound()) << length;
  }
}

TEST_F(HomeTest, OneOfAnotherUserOrWithoutAnAbsolutePathIsNone) {
  setEntry(getuid() + 1, "Somebody Else", home_.path());
  EXPECT_FALSE(isHomeFound());
  Launch launch;
  launch.workingDirectory = home_.root();
  for (const char* directory : {"", "home", "./home", "~"}) {
    setEntry(getuid(), "Tester", directory);
    auto server = start(launch);
    EXPECT_TRUE(toolResult(server->request(toolCall("current_settings"))).at("llmModel").is_null()) << directory;
    expectCleanEnd(*server);
  }
}

}  // namespace
}  // namespace orvane::test
