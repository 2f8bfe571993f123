// What the process was started with and the bridge passes on. Written once, before the first request.
#pragma once

#include <optional>
#include <string>

namespace orvane {

struct StartupValues {
  std::optional<std::string> agentName;  ///< the name given after --agent
  bool launchedByAssistant = false;      ///< started by the application's own assistant
};

/// The process's values.
const StartupValues& startupValues();

/// Sets the process's values. For start-up, before the first request, and for tests.
void setStartupValues(StartupValues values);

}  // namespace orvane
