#include "tests/support/server_run.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <functional>
#include <memory>
#include <thread>

#include "core/descriptor.h"
#include "core/descriptor_io.h"
#include "tests/support/json_text.h"

namespace orvane::test {

namespace {

/// A file without a name that takes what a server writes.
class Capture {
 public:
  int descriptor() const { return fileno(file_.get()); }

  std::string content() const {
    std::string bytes(static_cast<std::size_t>(lseek(descriptor(), 0, SEEK_END)), '\0');
    EXPECT_EQ(pread(descriptor(), bytes.data(), bytes.size(), 0), static_cast<ssize_t>(bytes.size()));
    return bytes;
  }

 private:
  std::unique_ptr<FILE, int (*)(FILE*)> file_{tmpfile(), &fclose};
};

ServerOutput collect(ToolRegistry registry, int input, const std::function<void(Server&)>& use) {
  const Capture output;
  const Capture diagnostics;
  Server server(std::move(registry), input, output.descriptor(), diagnostics.descriptor());
  use(server);
  return {output.content(), diagnostics.content()};
}

}  // namespace

std::vector<JSON> ServerOutput::messages() const {
  std::vector<JSON> messages;
  std::string_view rest = output;
  while (!rest.empty()) {
    const std::size_t end = rest.find('\n');
    if (end == std::string_view::npos) {
      ADD_FAILURE() << "an unfinished line: " << rest.substr(0, 300);
      break;
    }
    messages.emplace_back(parsedObject(rest.substr(0, end)));
    rest.remove_prefix(end + 1);
  }
  return messages;
}

ToolRegistry fullRegistry() { return {false, MCPToolsetSet::all(), false}; }

ServerOutput runServer(std::string_view input, ToolRegistry registry) {
  std::array<int, 2> ends{};
  EXPECT_EQ(pipe(ends.data()), 0);
  const Descriptor readingEnd(ends[0]);
  std::thread writer([input, end = ends[1]] {
    const Descriptor writingEnd(end);
    EXPECT_EQ(writeFully(writingEnd.get(), input), 0);
  });
  ServerOutput result = collect(std::move(registry), readingEnd.get(), [](Server& server) { server.run(); });
  writer.join();
  return result;
}

ServerOutput handleOneLine(std::string_view line, ToolRegistry registry) {
  return collect(std::move(registry), -1, [&](Server& server) { server.handleLine(line); });
}

std::string answerTo(std::string_view line) {
  const ServerOutput result = handleOneLine(line);
  EXPECT_EQ(result.diagnostics, "");
  const std::vector<JSON> messages = result.messages();
  EXPECT_LE(messages.size(), 1U);
  return messages.empty() ? std::string() : writePrettyJSON(messages.front());
}

}  // namespace orvane::test
