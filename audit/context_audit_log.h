// The append-only record of calls that read or changed the user's personal context, one JSON object a line, and the
// short sound that lets the user notice such a call. Best effort: nothing here delays, changes or fails a tool.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <string>

#include "core/json.h"
#include "platform/serial_queue.h"

namespace orvane {

/// What one call leaves in the log.
struct ContextAuditRecord {
  std::string tool;                               ///< wire name of the tool
  std::string result;                             ///< "ok", or "error: " and the tool's error text
  std::optional<std::string> app = {};            ///< display name of an application read from
  std::optional<std::string> bundle_id = {};      ///< that application's bundle identifier
  std::optional<std::int64_t> output_bytes = {};  ///< size of what was returned
  JSON::Object extra = {};                        ///< further pairs; they replace fields of the same name
};

class ContextAuditLog {
 public:
  /// What the log asks of the world; tests supply their own.
  struct Environment {
    std::function<std::chrono::system_clock::time_point()> now;
    std::function<void()> playCue;
  };

  /// The process's log, made on first use and never destroyed: the system's clock and the sound "Tink". What is pending
  /// when the process ends is lost, unless it is drained.
  static ContextAuditLog& shared();

  explicit ContextAuditLog(Environment environment);

  /// Sounds the cue if it is due and queues the record; returns at once. The line is composed, with the time of that
  /// moment, and appended to mcp-context-reads.jsonl in the configuration directory on the log's own serial queue.
  void record(ContextAuditRecord record);

  /// Waits until every record so far has been written or has failed. Pending records are also written on destruction.
  void drain();

 private:
  void soundCueIfDue();

  Environment environment_;
  std::mutex cueMutex_;
  std::optional<std::chrono::system_clock::time_point> lastCue_;  // guarded by cueMutex_; none: the distant past
  platform::SerialQueue queue_;                                   // last: its end needs the rest
};

}  // namespace orvane
