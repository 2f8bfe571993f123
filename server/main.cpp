// orvane-mcp: reads what it was started with, builds the registry, serves until standard input ends.
#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include "audit/context_audit_log.h"
#include "core/descriptor_io.h"
#include "core/startup_values.h"
#include "platform/platform.h"
#include "server/registry.h"
#include "server/server.h"
#include "server/startup_options.h"
#include "tools/local/version.h"

namespace {

constexpr std::string_view outOfMemory = "orvane-mcp: out of memory\n";

// A host may start the process with a standard stream closed. A file or socket opened later would take its number, and
// messages meant for the stream would land there.
void occupyStandardDescriptors() {
  while (true) {
    const int descriptor = open("/dev/null", O_RDWR);
    if (descriptor < 0) return;
    if (descriptor > STDERR_FILENO) {
      close(descriptor);
      return;
    }
  }
}

// Where there is none from the start on, not even the exception could be made that says so.
bool hasMemory() {
  void* volatile probe = std::malloc(1);
  const bool isThere = probe != nullptr;
  std::free(probe);
  return isThere;
}

}  // namespace

int main(int argumentCount, char** argumentValues) try {
  occupyStandardDescriptors();
  if (!hasMemory()) {
    orvane::writeDiagnostic(outOfMemory);
    return 0;
  }
  // A file that has grown to the user's limit is a failed write like any other.
  std::signal(SIGXFSZ, SIG_IGN);
  orvane::platform::keepFreedMemory();
  const std::vector<std::string> arguments(argumentValues, argumentValues + argumentCount);
  const orvane::StartupOptions options = orvane::readStartupOptions(arguments, std::getenv("ORVANE_ASSISTANT_ORIGIN"));
  orvane::setStartupValues({options.agentName, options.launchedByAssistant});
  orvane::setProgramPath(arguments.empty() ? std::string() : arguments.front());

  orvane::Server server(
      orvane::ToolRegistry(options.launchedByAssistant, options.selectedToolsets, options.readOnlyMode), STDIN_FILENO,
      STDOUT_FILENO, STDERR_FILENO);
  server.run();
  orvane::ContextAuditLog::shared().drain();
  return 0;
} catch (const std::bad_alloc&) {
  // Nothing was read yet, so nothing remains unanswered that was taken.
  orvane::writeDiagnostic(outOfMemory);
  return 0;
}
