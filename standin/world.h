// The world that the stand-in pretends to see (devices, voices, meetings, applications ...), kept as data in a JSON
// file.
#pragma once

#include <string>

#include "core/json.h"

namespace orvane::standin {

/// The world file that comes with the stand-in.
std::string defaultWorldPath();

/// The JSON object in the file at `path`. Throws std::runtime_error, naming the path, if it cannot be read or is none.
JSON::Object readObjectFile(const std::string& path);

}  // namespace orvane::standin
