// What the macOS half of the platform asks of the system in plain C, for macos.mm alone.
#pragma once

namespace orvane::platform {

/// Runs `task(context)` some time soon on the system's concurrent queue for work that a user has asked for, and returns
/// at once.
void runUserInitiated(void* context, void (*task)(void* context));

}  // namespace orvane::platform
