// What a tool is: a stateless type with four static members. MCPTool states them; ToolHandle is the one type-erased
// form in which the registry holds tools of every type.
#pragma once

#include <concepts>
#include <string>
#include <string_view>

#include "core/json.h"

namespace orvane {

/// A type that describes and runs one tool of the Model Context Protocol:
/// `name`, its name on the wire; `description`, the text shown to the agent, composed each time; `inputSchema`, the
/// JSON Schema of the arguments, built once; and `call`, which runs the tool and returns an object (or array). `call`
/// fails by throwing RPCError, or returns a result that says what went wrong.
template <class T>
concept MCPTool = requires(const JSON::Object& arguments) {
  { T::name } -> std::convertible_to<std::string_view>;
  { T::description() } -> std::same_as<std::string>;
  { T::inputSchema() } -> std::same_as<const JSON&>;
  { T::call(arguments) } -> std::same_as<JSON>;
};

/// A tool of any type. Copies are cheap and refer to the type's static members.
struct ToolHandle {
  std::string_view name;
  std::string (*description)();
  const JSON& (*inputSchema)();
  JSON (*call)(const JSON::Object& arguments);
};

/// The handle of the tool type T.
template <MCPTool T>
constexpr ToolHandle toolHandle() {
  return {T::name, &T::description, &T::inputSchema, &T::call};
}

}  // namespace orvane
