// orvane-standin: a stand-in for the desktop application, for demos, tests and benchmarks. It is not the application:
// it hears nothing, says nothing, shows nothing and touches no other application. It only answers the server's
// forwarded methods from made-up data, at the application's own socket.
#include <csignal>
#include <cstdio>
#include <exception>
#include <string>

#include "protocol/mcp_socket_path.h"
#include "standin/service.h"
#include "standin/world.h"

namespace {

using namespace orvane::standin;

constexpr const char* helpText =
    "Usage: orvane-standin [OPTION]...\n"
    "\n"
    "A stand-in for the Orvane desktop application, for demos, tests and benchmarks. It is NOT the application: it\n"
    "answers orvane-mcp's requests at the application's socket from made-up data and does nothing else.\n"
    "\n"
    "  --world FILE             the made-up data (JSON); by default the world.json that comes with the source\n"
    "  --script FILE            how to misbehave, per method (JSON; see standin/script.h)\n"
    "  --record FILE            append each request to FILE as one line\n"
    "  --consent ANSWER         grant (default), deny or timeout, when asked to allow changes\n"
    "  --meeting-consent ANSWER the same, when asked to allow reading meetings\n"
    "  --help                   show this and end\n"
    "\n"
    "It ends at SIGINT or SIGTERM and then removes its socket.\n";

struct Options {
  std::string world = defaultWorldPath();
  std::string script;
  std::string record;
  Consent changes = Consent::granted;
  Consent meetings = Consent::granted;
  bool help = false;
};

// Nothing if the arguments are not understood.
std::optional<Options> parseOptions(int count, char** arguments) {
  Options options;
  for (int i = 1; i < count; ++i) {
    const std::string name = arguments[i];
    if (name == "--help") {
      options.help = true;
      continue;
    }
    if (++i == count) return std::nullopt;
    const std::string value = arguments[i];
    const std::optional<Consent> consent = consentNamed(value);
    if (name == "--world") {
      options.world = value;
    } else if (name == "--script") {
      options.script = value;
    } else if (name == "--record") {
      options.record = value;
    } else if (name == "--consent" && consent.has_value()) {
      options.changes = *consent;
    } else if (name == "--meeting-consent" && consent.has_value()) {
      options.meetings = *consent;
    } else {
      return std::nullopt;
    }
  }
  return options;
}

// Set before the handlers are installed.
const Listener* listening = nullptr;

extern "C" void endOnSignal(int) { listening->stop(); }

void serve(const Options& options) {
  Application application(readObjectFile(options.world), options.changes, options.meetings);
  Script script(options.script.empty() ? orvane::JSON::Object{} : readObjectFile(options.script));
  Service service(application, script, options.record);
  const std::string path = orvane::MCPSocketPath::resolve();
  Listener listener(path, [&](std::string_view request) { return service.answer(request); });

  listening = &listener;
  struct sigaction action {};
  action.sa_handler = endOnSignal;
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
  std::printf("orvane-standin: listening at %s\n", path.c_str());
  std::fflush(stdout);
  listener.run();
  // The listener is about to go.
  std::signal(SIGINT, SIG_IGN);
  std::signal(SIGTERM, SIG_IGN);
  listening = nullptr;
}

}  // namespace

int main(int count, char** arguments) {
  const std::optional<Options> options = parseOptions(count, arguments);
  if (!options.has_value()) {
    std::fprintf(stderr, "orvane-standin: bad arguments; try --help\n");
    return 2;
  }
  if (options->help) {
    std::fputs(helpText, stdout);
    return 0;
  }
  try {
    serve(*options);
  } catch (const std::exception& fault) {
    std::fprintf(stderr, "orvane-standin: %s\n", fault.what());
    return 1;
  }
  return 0;
}
