#include "tests/faults/faulty_session.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "tests/support/child_environment.h"
#include "tests/support/server_process.h"

namespace orvane::test {

namespace {

// Bounds what a hang costs; no session takes a hundredth of it.
constexpr std::chrono::seconds patience{60};

const std::vector<std::string>& sessionLines() {
  static const std::vector<std::string> lines = [] {
    const auto call = [](std::string_view name, std::string_view arguments) {
      return R"("method":"tools/call","params":{"name":")" + std::string(name) + R"(","arguments":)" +
             std::string(arguments) + "}";
    };
    const std::vector<std::string> requests{
        R"("method":"initialize","params":{})",
        R"("method":"tools/list")",
        R"("method":"ping")",
        call("current_settings", "{}"),
        call("list_dictionary", "{}"),
        call("list_augments", "{}"),
        call("orvane_version", "{}"),
        call("read_preferences", "{}"),
        call("remember_preference", R"({"note":"first"})"),
        call("get_insights", "{}"),
        call("remember_preference", R"({"note":"second"})"),
        call("read_preferences", "{}"),
        call("set_input_device", R"({"name":"USB Mic"})"),
        R"("method":"none")",
        call("none", "{}"),
    };
    std::vector<std::string> result;
    for (const std::string& request : requests) {
      const std::size_t id = result.size() + 1;
      result.push_back(R"({"jsonrpc":"2.0","id":)" + std::to_string(id) + "," + request + "}\n");
    }
    return result;
  }();
  return lines;
}

std::string sessionInput() {
  std::string input;
  for (const std::string& line : sessionLines()) input += line;
  // A notification and a blank line, which nobody answers.
  return input + "{\"jsonrpc\":\"2.0\",\"method\":\"notifications/initialized\"}\n\n";
}

// A descriptor that holds the whole session and then ends.
int inputOf(InputKind kind) {
  const std::string input = sessionInput();
  const auto size = static_cast<ssize_t>(input.size());
  std::array<int, 2> ends{};
  if (kind == InputKind::file) {
    const int file = memfd_create("session", MFD_CLOEXEC);
    EXPECT_EQ(pwrite(file, input.data(), input.size(), 0), size);
    return file;
  }
  EXPECT_EQ(kind == InputKind::pipe ? pipe2(ends.data(), O_CLOEXEC)
                                    : socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()),
            0);
  EXPECT_EQ(::write(ends[1], input.data(), input.size()), size);
  close(ends[1]);
  return ends[0];
}

std::string wholeFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::string contentOf(int descriptor) {
  std::string bytes(static_cast<std::size_t>(lseek(descriptor, 0, SEEK_END)), '\0');
  EXPECT_EQ(pread(descriptor, bytes.data(), bytes.size(), 0), static_cast<ssize_t>(bytes.size()));
  return bytes;
}

// Waits for the end of `child`; kills it when it does not come.
bool waitFor(pid_t child, int& status) {
  const auto deadline = std::chrono::steady_clock::now() + patience;
  for (int pause = 0; waitpid(child, &status, WNOHANG) != child; pause = 1) {
    if (std::chrono::steady_clock::now() > deadline) {
      kill(child, SIGKILL);
      waitpid(child, &status, 0);
      return false;
    }
    poll(nullptr, 0, pause);
  }
  return true;
}

}  // namespace

// The line feed ends a request as well as the end of the stream does: where the program's end of it cannot be shut, an
// application that waits for that would let both wait until the time is over.
FaultySession::FaultySession()
    : application_(home_.socketPath(), [](Connection& connection) {
        while (!connection.received().ends_with('\n') && !connection.readSome(65536).empty()) {
        }
        connection.send("{\"ok\":true,\"result\":{\"n\":1}}\n");
      }) {}

int FaultySession::requestCount() const { return static_cast<int>(sessionLines().size()); }

std::string_view FaultySession::oldPreferences() const { return isHomeEmpty_ ? "" : "- old\n"; }

const std::vector<FaultySession::Note>& FaultySession::notes() {
  static const std::vector<Note> notes{{9, "- first\n"}, {11, "- second\n"}};
  return notes;
}

FaultyOutcome FaultySession::run(const std::string& faults, InputKind kind) {
  const std::string report = home_.root() + "/report";
  furnishHome();
  std::filesystem::remove(report);

  Launch launch;
  launch.preload = {ORVANE_FAULT_LIBRARY};
  launch.environment = {"FAULTS=" + faults, "FAULT_REPORT=" + report, "ORV_MCP_AUDIBLE=0"};
  std::vector<std::string> arguments{launch.program};
  std::vector<std::string> environment = childEnvironment(home_, launch);
  std::vector<char*> argumentPointers = pointersTo(arguments);
  std::vector<char*> environmentPointers = pointersTo(environment);
  const int input = inputOf(kind);
  // Files, so that nobody has to read along while the program runs.
  const int output = memfd_create("output", MFD_CLOEXEC);
  const int errors = memfd_create("errors", MFD_CLOEXEC);
  const pid_t child = fork();
  if (child == 0) {
    // Only calls that are safe after a fork of a process with threads.
    if (dup2(input, 0) < 0 || dup2(output, 1) < 0 || dup2(errors, 2) < 0) _exit(126);
    execve(launch.program.c_str(), argumentPointers.data(), environmentPointers.data());
    _exit(127);
  }
  close(input);

  FaultyOutcome outcome;
  outcome.hasEnded = waitFor(child, outcome.status);
  outcome.output = contentOf(output);
  outcome.errors = contentOf(errors);
  close(output);
  close(errors);
  outcome.faults.resize(static_cast<std::size_t>(std::count(faults.begin(), faults.end(), ',')) + 1);
  std::ifstream lines(report);
  for (FaultReport& fault : outcome.faults) {
    lines >> fault.calls >> fault.descriptor;
    for (long& hits : fault.hits) lines >> hits;
  }
  collectFiles(outcome);
  return outcome;
}

void FaultySession::furnishHome() const {
  if (isHomeEmpty_) {
    std::filesystem::remove_all(home_.path() + "/.config");
    return;
  }
  home_.write(".config/orvane/settings.json", R"({"assistantBackend":"local","dictationHotkey":{"name":"f5"}})");
  home_.write(".config/orvane/replacements.txt", "[replacements]\nomw -> on my way\n");
  home_.write(".config/orvane/augments/mine.md", "---\nname: Mine\n---\n");
  home_.write(".config/orvane/preferences.md", std::string(oldPreferences()));
  std::filesystem::remove(home_.path() + "/.config/orvane/mcp-context-reads.jsonl");
}

void FaultySession::collectFiles(FaultyOutcome& outcome) const {
  const std::string configuration = home_.path() + "/.config/orvane";
  outcome.preferences = wholeFile(configuration + "/preferences.md");
  outcome.auditLog = wholeFile(configuration + "/mcp-context-reads.jsonl");
  std::error_code none;  // the directory may be what could not be made
  for (const auto& entry : std::filesystem::directory_iterator(configuration, none)) {
    const std::string name = entry.path().filename();
    if (name != "settings.json" && name != "replacements.txt" && name != "augments" && name != "preferences.md" &&
        name != "mcp-context-reads.jsonl") {
      outcome.strayFiles.push_back(name);
      std::filesystem::remove(entry.path());
    }
  }
}

}  // namespace orvane::test
