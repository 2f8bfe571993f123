#include "standin/script.h"

#include <cstdlib>
#include <stdexcept>

#include "core/json_writer.h"
#include "protocol/mcp_mutation.h"

namespace orvane::standin {

namespace {

[[noreturn]] void fail(const std::string& reason) { throw std::runtime_error("bad script: " + reason); }

std::size_t countOf(const std::string& key, const JSON& value) {
  const std::optional<std::int64_t> count = value.asInteger();
  if (!count.has_value() || *count < 0) fail("\"" + key + "\" must be a whole number");
  return static_cast<std::size_t>(*count);
}

const std::string& textOf(const std::string& key, const JSON& value) {
  if (value.asString() == nullptr) fail("\"" + key + "\" must be a string");
  return *value.asString();
}

std::chrono::milliseconds delayOf(const std::string& key, const JSON& value) {
  if (value.asNumber() == nullptr) fail("\"" + key + "\" must be a number");
  return std::chrono::milliseconds(
      static_cast<std::int64_t>(std::strtod(value.asNumber()->text.c_str(), nullptr) * 1e3));
}

std::string bytesFromHex(const std::string& hex) {
  if (hex.size() % 2 != 0 || hex.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos) {
    fail("\"rawHex\" must be pairs of hexadecimal digits");
  }
  std::string bytes;
  for (std::size_t i = 0; i < hex.size(); i += 2) {
    bytes += static_cast<char>(std::strtoul(hex.substr(i, 2).c_str(), nullptr, 16));
  }
  return bytes;
}

std::string successOfSize(std::size_t size) {
  const auto answer = [](std::size_t length) {
    return encodeMCPMutationSuccess(JSON::Object{{"padding", std::string(length, 'x')}});
  };
  const std::size_t least = answer(0).size();
  if (size < least) fail("\"answerBytes\" must be at least " + std::to_string(least));
  return answer(size - least);
}

std::optional<std::string> answerFor(const std::string& key, const JSON& value) {
  if (key == "close") return "";
  if (key == "malformed") return R"({"ok": true, "result": {)";
  if (key == "raw") return textOf(key, value);
  if (key == "rawHex") return bytesFromHex(textOf(key, value));
  if (key == "answerBytes") return successOfSize(countOf(key, value));
  if (key == "result") return encodeMCPMutationSuccess(value);
  // Not the protocol's own encoder: a script may use codes that the protocol does not know.
  if (key == "error") return writeCompactJSON(JSON::Object{{"ok", false}, {"error", value}}) + "\n";
  return std::nullopt;
}

Behaviour readBehaviour(const JSON& value) {
  Behaviour behaviour;
  if (value.isNull()) return behaviour;
  if (value.asObject() == nullptr) fail("a behaviour must be an object or null");
  for (const auto& [key, member] : *value.asObject()) {
    if (key == "delaySeconds") {
      behaviour.delay = delayOf(key, member);
    } else if (key == "partialBytes") {
      behaviour.partialBytes = countOf(key, member);
    } else if (std::optional<std::string> answer = answerFor(key, member)) {
      if (behaviour.answer.has_value()) fail("two answers for one call");
      behaviour.answer = std::move(answer);
    } else {
      fail("unknown key \"" + key + "\"");
    }
  }
  return behaviour;
}

}  // namespace

Script::Script(const JSON::Object& script) {
  for (const auto& [method, value] : script) {
    Sequence& sequence = sequences_[method];
    const JSON::Array* list = value.asArray();
    sequence.endless = list == nullptr;
    if (list == nullptr) {
      sequence.behaviours.push_back(readBehaviour(value));
      continue;
    }
    for (const JSON& behaviour : *list) sequence.behaviours.push_back(readBehaviour(behaviour));
  }
}

Behaviour Script::next(const std::string& method) {
  const std::lock_guard lock(mutex_);
  auto found = sequences_.find(method);
  if (found == sequences_.end()) found = sequences_.find("*");
  if (found == sequences_.end()) return {};
  Sequence& sequence = found->second;
  if (sequence.endless) return sequence.behaviours.front();
  if (sequence.used == sequence.behaviours.size()) return {};
  return sequence.behaviours[sequence.used++];
}

}  // namespace orvane::standin
