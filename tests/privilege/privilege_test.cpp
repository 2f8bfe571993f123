// What the program asks of the system during its sessions, from a trace of its system calls: files, sockets and
// processes. It is what expected.txt names, no more and no less, so the list changes only on purpose.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "tests/support/scripted_application.h"
#include "tests/support/server_test.h"

namespace orvane::test {
namespace {

const std::string callArguments = R"({"note":"one","name":"x","id":"y","text":"z"})";

class PrivilegeTest : public ServerTest {
 protected:
  /// The program under strace, which keeps its findings in traceFile().
  Launch traced() const {
    Launch launch;
    launch.program = ORVANE_STRACE;
    launch.arguments = {"-f",
                        "-qq",
                        "-s",
                        "4096",
                        "-e",
                        "trace=%file,%network,%process",
                        "-e",
                        "signal=none",
                        "-o",
                        traceFile(),
                        ORVANE_MCP_PROGRAM};
    launch.environment = {"ORV_MCP_AUDIBLE=0"};
    return launch;
  }

  std::string traceFile() const { return home_.root() + "/trace"; }

  // A path without what differs from machine to machine and from run to run.
  std::string generalised(std::string path) const {
    static const std::regex temporary(R"(/\.orvane-mcp\.[0-9]+-[0-9a-f]{16}\.tmp$)");
    static const std::regex library(R"(^(/usr)?/lib(64)?/.*|^/etc/ld\.so\..*)");
    const std::string program = ORVANE_MCP_PROGRAM;
    if (path.starts_with(home_.path())) {
      path.replace(0, home_.path().size(), "~");
      return std::regex_replace(path, temporary, "/<temporary file>");
    }
    if (path.starts_with(home_.root() + "/")) return "<the tests' user database>";
    if (std::regex_match(path, library)) return "<system library>";
    if (path == program) return "<program>";
    if (path.ends_with("/VERSION")) return "VERSION of the application or beside or above the program";
    if (program.starts_with(path + "/")) return "<directory of the program>";
    return path;
  }

  // What one line of the trace says, or nothing for the second half of an interrupted one.
  std::string entryOf(const std::string& line) const {
    static const std::regex start(R"(^[0-9]+ +([a-z0-9_]+)\((.*))");
    static const std::regex quotedPath("\"([^\"]*)\"");
    std::smatch call;
    if (!std::regex_match(line, call, start)) return "";
    const std::string name = call[1];
    const std::string arguments = call[2];
    std::smatch found;
    const std::string path = std::regex_search(arguments, found, quotedPath) ? generalised(found[1]) : "";
    const auto has = [&](const char* text) { return arguments.find(text) != std::string::npos; };

    if (name == "exit" || name == "exit_group") return "";
    if (name == "clone" || name == "clone3") return has("CLONE_THREAD") ? "start a thread" : "start a process";
    if (name == "open" || name == "openat") {
      const char* use = has("O_RDWR") ? "read and write " : has("O_WRONLY") ? "write " : "read ";
      return use + path;
    }
    if (name == "socket" || name == "connect") {
      return name + " " + (has("AF_UNIX") ? "AF_UNIX" : arguments) + (path.empty() ? "" : " " + path);
    }
    if (name.find("stat") != std::string::npos || name.find("access") != std::string::npos) {
      return path.empty() ? "" : "look at " + path;  // without a path it is an open file
    }
    // What goes over the socket is text too, but no path.
    if (path.empty() || name == "sendto" || name == "setsockopt") return name;
    std::string entry = name.substr(0, name.find("at"));
    for (std::sregex_iterator each(arguments.begin(), arguments.end(), quotedPath); each != std::sregex_iterator();
         ++each) {
      entry += " " + generalised((*each)[1]);
    }
    return name == "execve" ? name + " " + path : entry;
  }

  std::set<std::string> entries() const {
    std::set<std::string> result;
    std::ifstream trace(traceFile());
    for (std::string line; std::getline(trace, line);) {
      if (std::string entry = entryOf(line); !entry.empty()) result.insert(std::move(entry));
    }
    return result;
  }
};

std::set<std::string> listedEntries() {
  std::set<std::string> result;
  std::ifstream list(ORVANE_PRIVILEGE_LIST);
  for (std::string line; std::getline(list, line);) {
    if (!line.empty() && line.front() != '#') result.insert(line);
  }
  return result;
}

TEST_F(PrivilegeTest, TheProgramAsksForWhatIsListedAndNothingElse) {
  std::set<std::string> actual;
  // A first start: nothing is there yet, and the first thing to be made is the audit log.
  {
    auto server = start(traced());
    server->request(R"({"id":1,"method":"initialize"})");
    for (const std::string& name : toolNames(*server)) {
      if (name != "remember_preference") server->request(toolCall(name, callArguments));
    }
    expectCleanEnd(*server);
    actual.merge(entries());
  }
  const std::string configuration = home_.path() + "/.config";
  EXPECT_TRUE(std::filesystem::exists(configuration + "/orvane/mcp-context-reads.jsonl"));
  std::filesystem::remove_all(configuration);
  // The same, but the first thing is a note.
  {
    auto server = start(traced());
    server->request(toolCall("remember_preference", callArguments));
    expectCleanEnd(*server);
    actual.merge(entries());
  }
  EXPECT_TRUE(std::filesystem::exists(configuration + "/orvane/preferences.md"));
  // Everything is there.
  {
    const ScriptedApplication application(home_.socketPath(), answerWith(R"({"ok":true,"result":{}})"));
    home_.write(".config/orvane/settings.json", "{}");
    home_.write(".config/orvane/replacements.txt", "[fillers]\num\n");
    home_.write(".config/orvane/augments/mine.md", "---\n---");
    auto server = start(traced());
    server->request(R"({"id":1,"method":"initialize"})");
    for (const std::string& name : toolNames(*server)) server->request(toolCall(name, callArguments));
    server->request(toolCall("remember_preference", R"({"note":"two"})"));
    server->request("nonsense");
    expectCleanEnd(*server);
    actual.merge(entries());
  }

  const std::set<std::string> listed = listedEntries();
  for (const std::string& entry : actual) EXPECT_TRUE(listed.contains(entry)) << "not listed: " << entry;
  for (const std::string& entry : listed) EXPECT_TRUE(actual.contains(entry)) << "not asked for any more: " << entry;
}

// Before a byte goes out, its time is limited and the peer is known.
TEST_F(PrivilegeTest, ACallTakesItsStepsInThisOrder) {
  const ScriptedApplication application(home_.socketPath(), answerWith(R"({"ok":true})"));
  auto server = start(traced());
  toolResult(server->request(toolCall("get_insights")));
  expectCleanEnd(*server);
  static const std::regex step(R"(^[0-9]+ +(socket|setsockopt|connect|getsockopt|sendto|shutdown)\((.*))");
  std::vector<std::string> steps;
  std::string options;
  std::ifstream trace(traceFile());
  std::smatch found;
  for (std::string line; std::getline(trace, line);) {
    if (!std::regex_match(line, found, step)) continue;
    steps.push_back(found[1]);
    if (found[1] == "setsockopt") options += found[2].str() + "\n";
  }
  EXPECT_EQ(steps, (std::vector<std::string>{"socket", "setsockopt", "setsockopt", "connect", "getsockopt", "sendto",
                                             "shutdown"}));
  EXPECT_NE(options.find("SO_RCVTIMEO"), std::string::npos) << options;
  EXPECT_NE(options.find("SO_SNDTIMEO"), std::string::npos) << options;
}

}  // namespace
}  // namespace orvane::test
