#include "audit/context_audit_log.h"

#include <fcntl.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <string_view>
#include <utility>

#include "core/descriptor.h"
#include "core/descriptor_io.h"
#include "core/error_text.h"
#include "core/files.h"
#include "core/json_writer.h"
#include "core/paths.h"
#include "core/user_paths.h"
#include "platform/platform.h"

namespace orvane {

namespace {

using TimePoint = std::chrono::system_clock::time_point;

constexpr auto cueInterval = std::chrono::seconds(2);

// UTC with three digits of the second's fraction, cut and not rounded: 2026-11-16T01:23:45.678Z.
std::string timestamp(TimePoint time) {
  const auto milliseconds = std::chrono::floor<std::chrono::milliseconds>(time);
  const auto seconds = std::chrono::floor<std::chrono::seconds>(milliseconds);
  const std::time_t calendarTime = std::chrono::system_clock::to_time_t(seconds);
  std::tm utc{};
  gmtime_r(&calendarTime, &utc);
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02d-%02dT%02d:%02d:%02d.%03dZ", utc.tm_year + 1900, utc.tm_mon + 1,
                utc.tm_mday, utc.tm_hour, utc.tm_min, utc.tm_sec, static_cast<int>((milliseconds - seconds).count()));
  return text.data();
}

// Throws JSONWriteError if the record holds text that is not UTF-8.
std::string compose(const ContextAuditRecord& record, TimePoint now) {
  JSON::Object object{{"ts", timestamp(now)}, {"tool", record.tool}, {"result", record.result}};
  if (record.app) object.set("app", *record.app);
  if (record.bundle_id) object.set("bundle_id", *record.bundle_id);
  if (record.output_bytes) object.set("output_bytes", *record.output_bytes);
  for (const auto& [key, value] : record.extra) object.set(key, value);
  return writeCompactJSON(std::move(object), Slashes::escaped) + '\n';
}

void append(const std::string& path, std::string_view line) {
  // Without a directory the open fails, and says so.
  createDirectories(parentDirectory(path));
  // Several servers may append at once: O_APPEND and one write a line keep their lines apart. Opening must not wait for
  // the reader of a FIFO, nor make a terminal the process's own.
  constexpr int flags = O_WRONLY | O_APPEND | O_CREAT | O_NONBLOCK | O_CLOEXEC | O_NOCTTY;
  int error = 0;
  {
    const Descriptor file(retryInterrupted([&] { return open(path.c_str(), flags, 0666); }));
    if (!file.isOpen()) {
      writeDiagnostic("ContextAuditLog: open for write failed: " + path + '\n');
      return;
    }
    error = writeFully(file.get(), line);
  }
  if (error != 0) writeDiagnostic("ContextAuditLog: write failed: " + errorText(error) + '\n');
}

bool isCueSilenced() {
  const char* setting = std::getenv("ORV_MCP_AUDIBLE");
  return setting != nullptr && std::string_view(setting) == "0";
}

}  // namespace

ContextAuditLog& ContextAuditLog::shared() {
  // Never destroyed, so that no record needs what the end of the process has already taken away.
  static ContextAuditLog& log =
      *new ContextAuditLog({&std::chrono::system_clock::now, [] { platform::playSystemSound("Tink"); }});
  return log;
}

ContextAuditLog::ContextAuditLog(Environment environment)
    : environment_(std::move(environment)), queue_("com.orvane.mcp.context-audit") {}

void ContextAuditLog::record(ContextAuditRecord record) {
  soundCueIfDue();
  queue_.submit([this, record = std::move(record)] {
    try {
      append(configurationPath("mcp-context-reads.jsonl"), compose(record, environment_.now()));
    } catch (const std::exception&) {
      // Text that is not UTF-8, or no memory: the record is lost, and nothing else may be.
    }
  });
}

void ContextAuditLog::drain() { queue_.drain(); }

void ContextAuditLog::soundCueIfDue() {
  if (isCueSilenced()) return;
  {
    const std::lock_guard lock(cueMutex_);
    const TimePoint now = environment_.now();
    if (lastCue_ && now - *lastCue_ < cueInterval) return;
    lastCue_ = now;
  }
  environment_.playCue();
}

}  // namespace orvane
