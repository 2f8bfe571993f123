// Server's line transport.
#include <array>
#include <new>
#include <string>

#include "core/json_writer.h"
#include "core/utf8.h"
#include "server/server.h"

namespace orvane {

void Server::run() {
  try {
    while (const std::optional<std::string> line = readLine()) {
      if (!line->empty()) handleLine(*line);
    }
  } catch (const std::bad_alloc&) {
    // Thrown by readLine alone. Without memory for a line nobody knows where the next one begins: like a failed read,
    // this is the end of the input.
  }
}

std::optional<std::string> Server::readLine() {
  std::string line;
  line.reserve(4096);
  bool hasOverflowed = false;
  while (true) {
    std::string_view bytes = stdin.take();
    if (bytes.empty()) {
      if (line.empty()) return std::nullopt;
      if (hasOverflowed) return std::string();
      if (!isValidUTF8(line)) return std::nullopt;
      return line;
    }
    const bool hasEnded = bytes.back() == '\n';
    if (hasEnded) bytes.remove_suffix(1);
    if (const std::size_t room = maxLineBytes - line.size(); !hasOverflowed && bytes.size() > room) {
      hasOverflowed = true;
      line.clear();
      bytes.remove_prefix(room + 1);
    }
    // After an overflow the line only tells whether anything followed.
    if (!hasOverflowed || line.empty()) line.append(bytes);
    if (!hasEnded) continue;
    if (hasOverflowed) {
      writeDiagnostic("orvane-mcp: dropped oversize line (>" + std::to_string(maxLineBytes) + " bytes)\n");
      return std::string();
    }
    if (!isValidUTF8(line)) return std::string();
    return line;
  }
}

void Server::writeMessage(const JSON& message) {
  std::string text;
  try {
    text = writeCompactJSON(message);
  } catch (const JSONWriteError&) {
    reportUnwritableResponse();
    return;
  }
  stdout.write(std::array<std::string_view, 2>{text, "\n"});
}

void Server::reportUnwritableResponse() { writeDiagnostic("orvane-mcp: failed to serialize response\n"); }

void Server::writeDiagnostic(std::string_view line) { stderr.write(std::array{line}); }

}  // namespace orvane
