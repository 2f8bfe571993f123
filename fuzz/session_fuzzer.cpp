// A whole session: bytes in, lines out. The first byte chooses what standard input is; the rest is what it holds. The
// answers are compared with what the input's lines ask for, one by one and in order.
#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "audit/context_audit_log.h"
#include "core/descriptor.h"
#include "core/descriptor_io.h"
#include "core/files.h"
#include "core/json_reader.h"
#include "core/paths.h"
#include "core/utf8.h"
#include "fuzz/require.h"
#include "server/server.h"
#include "tests/support/fake_platform.h"

namespace {

using namespace orvane;
using orvane::fuzz::require;

// What one answer must say.
struct Expected {
  JSON id;
  std::optional<int> code;  // where the rules say it without running the method
};

int depthOf(const JSON& value) {
  int deepest = 0;
  if (const JSON::Array* array = value.asArray()) {
    for (const JSON& element : *array) deepest = std::max(deepest, depthOf(element));
  } else if (const JSON::Object* object = value.asObject()) {
    for (const auto& [key, member] : *object) deepest = std::max(deepest, depthOf(member));
  }
  return deepest + 1;
}

std::optional<Expected> expectedAnswer(std::string_view line) {
  if (line.empty() || !isValidUTF8(line)) return std::nullopt;
  const JSONReadResult read = readJSON(line);
  const std::size_t start = line.find_first_not_of(" \t\r\n");
  if (read.outcome == JSONReadOutcome::tooDeep) return Expected{nullptr, line[start] == '{' ? -32600 : -32700};
  const JSON::Object* request = read.value.asObject();
  if (request == nullptr) return Expected{nullptr, -32700};
  // A container without content counts as the level it stands on, like a scalar.
  if (depthOf(read.value) > 32) return Expected{nullptr, -32600};
  const JSON* id = request->find("id");
  if (id == nullptr || id->isNull()) return std::nullopt;
  return Expected{*id, std::nullopt};
}

std::vector<Expected> expectedAnswers(std::string_view input) {
  std::vector<Expected> expected;
  while (!input.empty()) {
    const std::size_t end = std::min(input.find('\n'), input.size());
    if (auto answer = expectedAnswer(input.substr(0, end))) expected.push_back(*std::move(answer));
    input.remove_prefix(std::min(end + 1, input.size()));
  }
  return expected;
}

void checkAnswer(std::string_view line, const Expected& expected) {
  const std::optional<JSON::Object> answer = readJSONObject(line);
  require(answer.has_value() && answer->size() == 3, "a line is an object of three members");
  const JSON* version = answer->find("jsonrpc");
  const JSON* id = answer->find("id");
  const JSON* result = answer->find("result");
  const JSON* error = answer->find("error");
  require(version != nullptr && *version == JSON("2.0"), "a line is a JSON-RPC 2.0 message");
  require(id != nullptr && *id == expected.id, "answers carry the requests' ids, in order");
  require((result == nullptr) != (error == nullptr), "an answer is a result or an error");
  if (expected.code.has_value()) {
    require(error != nullptr && *error->asObject()->find("code") == JSON(*expected.code), "the code is the fault's");
  }
  if (error != nullptr) {
    const JSON::Object* body = error->asObject();
    require(body != nullptr && body->find("code") != nullptr && body->find("code")->asInteger().has_value() &&
                body->find("message") != nullptr && body->find("message")->asString() != nullptr,
            "an error has a code and a message");
  }
}

Descriptor memoryFile() { return Descriptor(memfd_create("session", MFD_CLOEXEC)); }

std::string contentOf(const Descriptor& file) {
  std::string bytes(static_cast<std::size_t>(lseek(file.get(), 0, SEEK_END)), '\0');
  require(pread(file.get(), bytes.data(), bytes.size(), 0) == static_cast<ssize_t>(bytes.size()), "memory can be read");
  return bytes;
}

// A descriptor that holds `input` and then ends. Input is short enough for a pipe to take it whole.
Descriptor inputOf(char kind, std::string_view input) {
  int ends[2] = {-1, -1};
  if (kind == 'p') {
    require(pipe(ends) == 0, "a pipe");
  } else if (kind == 's') {
    require(socketpair(AF_UNIX, SOCK_STREAM, 0, ends) == 0, "sockets");
  } else {
    Descriptor file = memoryFile();
    require(writeFully(file.get(), input) == 0 && lseek(file.get(), 0, SEEK_SET) == 0, "memory takes the input");
    return file;
  }
  const Descriptor writingEnd(ends[1]);
  require(writeFully(writingEnd.get(), input) == 0, "the input fits");
  return Descriptor(ends[0]);
}

void writeFile(const std::string& path, std::string_view content) {
  createDirectories(parentDirectory(path));
  require(!replaceFile(path, content), "the home can be written to");
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  // One home for all inputs: what one session leaves, the next one finds. Sessions must not depend on it.
  static const test::FakeHome home;
  writeFile(home.configurationFile("settings.json"), R"({"assistantBackend":"local","inputDevice":1})");
  writeFile(home.configurationFile("replacements.txt"), "[replacements]\nomw -> on my way\n[fillers]\num, uh\n");
  writeFile(home.configurationFile("augments/mine.md"), "---\nname: Mine\n---\n");
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  if (size == 0 || size > 60000) return 0;
  const std::string_view input(reinterpret_cast<const char*>(data) + 1, size - 1);
  const Descriptor standardInput = inputOf(static_cast<char>(data[0]), input);
  const Descriptor output = memoryFile();
  const Descriptor diagnostics = memoryFile();
  {
    static const ToolRegistry registry(false, MCPToolsetSet::all(), false);
    Server server(registry, standardInput.get(), output.get(), diagnostics.get());
    server.run();
  }
  ContextAuditLog::shared().drain();

  const std::string written = contentOf(output);
  std::string_view rest = written;
  for (const Expected& expected : expectedAnswers(input)) {
    const std::size_t end = rest.find('\n');
    require(end != std::string_view::npos, "every request is answered by a whole line");
    checkAnswer(rest.substr(0, end), expected);
    rest.remove_prefix(end + 1);
  }
  require(rest.empty(), "nothing but answers is written");
  require(contentOf(diagnostics).empty(), "an input without an overlong line gives no diagnostic");
  return 0;
}
