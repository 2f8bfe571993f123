#include "tools/schema.h"

#include <utility>

namespace orvane {

SchemaProperty SchemaProperty::required() && {
  isRequired = true;
  return std::move(*this);
}

SchemaProperty SchemaProperty::oneOf(std::initializer_list<std::string_view> values) && {
  enumeration = values;
  return std::move(*this);
}

SchemaProperty stringProperty(std::string_view name, std::string_view description) {
  return {.name = name, .type = "string", .description = description};
}

SchemaProperty booleanProperty(std::string_view name, std::string_view description) {
  return {.name = name, .type = "boolean", .description = description};
}

SchemaProperty integerProperty(std::string_view name, std::string_view description) {
  return {.name = name, .type = "integer", .description = description};
}

SchemaProperty stringListProperty(std::string_view name, std::string_view description) {
  return {.name = name, .type = "array", .description = description};
}

JSON objectSchema(std::initializer_list<SchemaProperty> properties) {
  JSON::Object propertySchemas;
  JSON::Array required;
  for (const SchemaProperty& property : properties) {
    JSON::Object schema{{"type", property.type}};
    if (property.type == "array") schema.set("items", JSON::Object{{"type", "string"}});
    if (!property.enumeration.empty()) {
      schema.set("enum", JSON::Array(property.enumeration.begin(), property.enumeration.end()));
    }
    if (!property.description.empty()) schema.set("description", property.description);
    propertySchemas.set(property.name, std::move(schema));
    if (property.isRequired) required.emplace_back(property.name);
  }
  JSON::Object schema{{"type", "object"}, {"properties", std::move(propertySchemas)}};
  if (!required.empty()) schema.set("required", std::move(required));
  schema.set("additionalProperties", false);
  return schema;
}

const JSON& emptyInputSchema() {
  static const JSON schema = objectSchema({});
  return schema;
}

JSON flagSchema() { return objectSchema({booleanProperty("enabled").required()}); }

}  // namespace orvane
