// The table of methods that the stand-in serves. Each family adds its own and shares one state among them; nothing here
// guards against two calls at once.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>

#include "standin/arguments.h"

namespace orvane::standin {

/// Whose consent a method needs before it runs.
enum class Gate {
  none,
  changes,   ///< asked once, for everything that changes something
  meetings,  ///< asked once, for everything that reads meetings
};

struct Method {
  Gate gate;
  std::function<JSON(const Arguments&)> answer;  ///< gives the result or throws a Refusal
};

using MethodTable = std::map<std::string, Method, std::less<>>;

/// Adds the member function `answer` of `family` as the method `name`.
template <class Family>
void addMethod(MethodTable& table, const std::shared_ptr<Family>& family, const char* name, Gate gate,
               JSON (Family::*answer)(const Arguments&)) {
  table[name] = {gate, [family, answer](const Arguments& arguments) { return ((*family).*answer)(arguments); }};
}

// Each adds one family, starting from what `world` says.
void addSettingsMethods(MethodTable& table, const JSON::Object& world);
void addVoiceMethods(MethodTable& table, const JSON::Object& world);
void addAugmentMethods(MethodTable& table, const JSON::Object& world);
void addMeetingsMethods(MethodTable& table, const JSON::Object& world);
void addSlateMethods(MethodTable& table, const JSON::Object& world);
void addComputerMethods(MethodTable& table, const JSON::Object& world);

}  // namespace orvane::standin
