#include "protocol/mcp_socket_path.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "tests/support/fake_platform.h"

namespace orvane::test {
namespace {

TEST(MCPSocketPathTest, LiesUnderThePlatformsApplicationSupport) {
  const FakeHome home;
  fakePlatform().applicationSupport = "/Users/someone/Library/Application Support";
  EXPECT_EQ(MCPSocketPath::resolve(), "/Users/someone/Library/Application Support/Orvane/mcp.sock");
}

TEST(MCPSocketPathTest, LiesUnderTheHomeWhereThereIsNone) {
  const FakeHome home;
  EXPECT_EQ(MCPSocketPath::resolve(), home.file("Library/Application Support/Orvane/mcp.sock"));
}

TEST(MCPSocketPathTest, IsLookedUpAfreshEachTime) {
  const FakeHome home;
  fakePlatform().home = "/one";
  EXPECT_EQ(MCPSocketPath::resolve(), "/one/Library/Application Support/Orvane/mcp.sock");
  fakePlatform().home = "/two";
  EXPECT_EQ(MCPSocketPath::resolve(), "/two/Library/Application Support/Orvane/mcp.sock");
  fakePlatform().applicationSupport = "/three";
  EXPECT_EQ(MCPSocketPath::resolve(), "/three/Orvane/mcp.sock");
}

TEST(MCPSocketPathTest, NoEnvironmentVariableOverridesIt) {
  const FakeHome home;
  const std::string before = MCPSocketPath::resolve();
  for (const char* name :
       {"ORVANE_SOCKET", "ORVANE_MCP_SOCKET", "MCP_SOCKET_PATH", "XDG_RUNTIME_DIR", "XDG_DATA_HOME"}) {
    setenv(name, "/decoy", 1);
  }
  EXPECT_EQ(MCPSocketPath::resolve(), before);
  for (const char* name :
       {"ORVANE_SOCKET", "ORVANE_MCP_SOCKET", "MCP_SOCKET_PATH", "XDG_RUNTIME_DIR", "XDG_DATA_HOME"}) {
    unsetenv(name);
  }
}

}  // namespace
}  // namespace orvane::test
