#include "standin/world.h"

#include <stdexcept>
#include <variant>

#include "core/files.h"
#include "core/json_reader.h"

namespace orvane::standin {

std::string defaultWorldPath() { return ORVANE_STANDIN_WORLD; }

JSON::Object readObjectFile(const std::string& path) {
  const std::variant<std::string, FileError> content = readWholeFile(path);
  if (const auto* error = std::get_if<FileError>(&content)) {
    throw std::runtime_error("cannot read " + path + ": " + error->description());
  }
  std::optional<JSON::Object> object = readJSONObject(std::get<std::string>(content));
  if (!object.has_value()) throw std::runtime_error(path + " is not a JSON object");
  return *std::move(object);
}

}  // namespace orvane::standin
