// Server's JSON-RPC dispatch (JSON-RPC 2.0) and the methods of the Model Context Protocol, version 2024-11-05.
#include <algorithm>
#include <array>
#include <new>
#include <stdexcept>

#include "core/json_reader.h"
#include "core/json_writer.h"
#include "core/utf8.h"
#include "server/server.h"
#include "tools/local/version.h"

namespace orvane {

namespace {

int messageDepth(const JSON& value, int level) {
  if (level > maxMessageDepth) return level;
  int depth = level;
  if (const JSON::Object* object = value.asObject()) {
    for (const JSONMember& member : *object) depth = std::max(depth, messageDepth(member.value, level + 1));
  } else if (const JSON::Array* array = value.asArray()) {
    for (const JSON& element : *array) depth = std::max(depth, messageDepth(element, level + 1));
  }
  return depth;
}

// Whether the first thing in `line` opens an object.
bool startsObject(std::string_view line) {
  line.remove_prefix(std::min(line.find_first_not_of(" \t\r\n"), line.size()));
  return line.starts_with('{');
}

JSON::Object objectOr(std::optional<JSON> value) {
  JSON::Object* object = value.has_value() ? value->asObject() : nullptr;
  return object == nullptr ? JSON::Object() : std::move(*object);
}

JSON initializeResult() {
  return JSON::Object{{"protocolVersion", "2024-11-05"},
                      {"capabilities", JSON::Object{{"tools", JSON::Object{{"listChanged", true}}}}},
                      {"serverInfo", JSON::Object{{"name", "orvane"}, {"version", applicationVersion()}}}};
}

ToolOutcome callTool(const ToolRegistry& registry, const JSON::Object& params) {
  const JSON* name = params.find("name");
  if (name == nullptr || name->asString() == nullptr) {
    throw RPCError(rpc_code::invalidParams, "Missing 'name' in tools/call");
  }
  const JSON* arguments = params.find("arguments");
  const JSON::Object* object = arguments == nullptr ? nullptr : arguments->asObject();
  JSON value = registry.call(*name->asString(), object == nullptr ? JSON::Object() : *object);
  if (value.asObject() == nullptr && value.asArray() == nullptr) {
    throw std::runtime_error("the tool returned neither an object nor an array");
  }
  return {std::move(value)};
}

// The start of a response, up to the value of "result". An id was read from valid text, so it can be written.
std::string resultHead(const JSON& id) {
  std::string text;
  text.reserve(256);
  text += R"({"jsonrpc":"2.0","id":)";
  appendCompactJSON(text, id);
  return text += R"(,"result":)";
}

}  // namespace

void Server::handleLine(std::string_view line) {
  try {
    handleRequest(line);
  } catch (const std::bad_alloc&) {
    // Its id cannot be told any more, or not even be copied. The answer is made of nothing that needs memory.
    stdout.write(std::array<std::string_view, 1>{
        R"({"jsonrpc":"2.0","id":null,"error":{"code":-32603,"message":"Internal error: std::bad_alloc"}})"
        "\n"});
  }
}

void Server::handleRequest(std::string_view line) {
  if (!isValidUTF8(line)) {
    writeDiagnostic("orvane-mcp: dropping non-UTF-8 line\n");
    return;
  }
  JSONReadResult read = readJSON(line);
  JSON::Object* request = read.value.asObject();
  const bool isUnreadablyDeep = read.outcome == JSONReadOutcome::tooDeep && startsObject(line);
  if (request == nullptr && !isUnreadablyDeep) {
    sendError(nullptr, RPCError(rpc_code::parseError, "Parse error"));
    return;
  }
  if (isUnreadablyDeep || messageDepth(read.value, 1) > maxMessageDepth) {
    sendError(nullptr, RPCError(rpc_code::invalidRequest, "Request exceeds max depth"));
    return;
  }

  const JSON id = request->take("id").value_or(JSON());
  if (id.isNull()) return;
  try {
    const JSON* methodMember = request->find("method");
    const std::string* methodName = methodMember == nullptr ? nullptr : methodMember->asString();
    const std::string method = methodName == nullptr ? std::string() : *methodName;
    const JSON::Object params = objectOr(request->take("params"));
    std::visit([&](const auto& result) { writeResult(id, result); }, dispatchMethod(method, params));
  } catch (const RPCError& error) {
    sendError(id, error);
  } catch (const std::exception& error) {
    sendError(id, RPCError(rpc_code::internalError, std::string("Internal error: ") + error.what()));
  }
}

MethodResult Server::dispatchMethod(std::string_view method, const JSON::Object& params) {
  if (method == "tools/call") return callTool(registry, params);
  if (method == "tools/list") return ToolListing{};
  if (method == "initialize") return initializeResult();
  if (method == "ping") return JSON(JSON::Object());
  if (method == "prompts/list") return JSON(JSON::Object{{"prompts", JSON::Array()}});
  if (method == "resources/list") return JSON(JSON::Object{{"resources", JSON::Array()}});
  if (method == "resources/templates/list") return JSON(JSON::Object{{"resourceTemplates", JSON::Array()}});
  throw RPCError(rpc_code::methodNotFound, "Method not found: " + std::string(method));
}

void Server::writeResult(const JSON& id, const JSON& result) {
  std::string text = resultHead(id);
  try {
    appendCompactJSON(text, result);
  } catch (const JSONWriteError&) {
    reportUnwritableResponse();
    return;
  }
  stdout.write(std::array<std::string_view, 2>{text, "}\n"});
}

void Server::writeResult(const JSON& id, ToolListing) {
  try {
    const std::string head = resultHead(id) + R"({"tools":)";
    stdout.write(std::array<std::string_view, 3>{head, registry.listEntriesText(), "}}\n"});
  } catch (const JSONWriteError&) {
    reportUnwritableResponse();
  }
}

// Throws JSONWriteError if the outcome cannot be serialised: the request is then answered with an internal error.
void Server::writeResult(const JSON& id, const ToolOutcome& outcome) {
  std::string text = resultHead(id) + R"({"content":[{"type":"text","text":)";
  appendPrettyJSONString(text, outcome.value);
  stdout.write(std::array<std::string_view, 2>{text, R"(}],"isError":false}})"
                                                     "\n"});
}

void Server::sendError(const JSON& id, const RPCError& error) {
  JSON::Object body{{"code", error.code}, {"message", error.message}};
  if (error.data.has_value()) body.set("data", *error.data);
  writeMessage(JSON::Object{{"jsonrpc", "2.0"}, {"id", id}, {"error", std::move(body)}});
}

}  // namespace orvane
