#include "core/startup_values.h"

#include <utility>

namespace orvane {

namespace {

StartupValues& storage() {
  static StartupValues values;
  return values;
}

}  // namespace

const StartupValues& startupValues() { return storage(); }

void setStartupValues(StartupValues values) { storage() = std::move(values); }

}  // namespace orvane
