// Builders for the JSON Schemas of tool arguments. They make exactly the keywords that are advertised and no others:
// defaults and limits stand in the descriptions only.
#pragma once

#include <initializer_list>
#include <string_view>
#include <vector>

#include "core/json.h"

namespace orvane {

/// One argument of a tool.
struct SchemaProperty {
  std::string_view name;
  std::string_view type;                           ///< "string", "boolean", "integer" or "array" (of strings)
  std::string_view description = {};               ///< none is written when empty
  std::vector<std::string_view> enumeration = {};  ///< the allowed values, in order; none is written when empty
  bool isRequired = false;

  /// This argument as one that must be given.
  SchemaProperty required() &&;
  /// This argument limited to `values`.
  SchemaProperty oneOf(std::initializer_list<std::string_view> values) &&;
};

/// An optional argument of one type, without a description where that is empty.
SchemaProperty stringProperty(std::string_view name, std::string_view description = {});
SchemaProperty booleanProperty(std::string_view name, std::string_view description = {});
SchemaProperty integerProperty(std::string_view name, std::string_view description = {});
/// The same for an array whose items are strings.
SchemaProperty stringListProperty(std::string_view name, std::string_view description = {});

/// The schema of an object with `properties` and no others; "required" lists the required ones in their order and is
/// left out when there are none.
JSON objectSchema(std::initializer_list<SchemaProperty> properties);

/// The one schema of all tools without arguments.
const JSON& emptyInputSchema();

/// The schema of a tool that takes one required boolean, "enabled".
JSON flagSchema();

}  // namespace orvane
