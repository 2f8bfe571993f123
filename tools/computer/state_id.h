// The argument that most computer-use tools have in common.
#pragma once

#include "tools/schema.h"

namespace orvane {

/// "state_id", required: the inspected state that a tool reads from or acts on.
inline SchemaProperty stateIDProperty() {
  return stringProperty("state_id", "Short-lived computer_state_id returned by computer_inspect.").required();
}

}  // namespace orvane
