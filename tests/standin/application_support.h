// Calling the stand-in's methods in tests.
#pragma once

#include <gtest/gtest.h>

#include "core/json_reader.h"
#include "core/json_writer.h"
#include "standin/application.h"
#include "standin/json_access.h"
#include "standin/refusal.h"
#include "standin/world.h"

namespace orvane::standin {

/// An application in the world that comes with the stand-in, with what a test needs said in JSON text.
class StandinTest : public testing::Test {
 protected:
  JSON::Object call(const std::string& method, const std::string& arguments = "{}") {
    const JSON result = application_.call(method, readJSONObject(arguments).value());
    return objectOf(result);
  }

  /// The refusal of a call that must be refused: "code: message" and, after a blank, its data.
  std::string refusal(const std::string& method, const std::string& arguments = "{}") {
    try {
      return "answered: " + writeCompactJSON(call(method, arguments));
    } catch (const Refusal& refused) {
      const std::string data = refused.data().has_value() ? " " + writeCompactJSON(*refused.data()) : "";
      return std::string(rawValue(refused.code())) + ": " + refused.what() + data;
    }
  }

  Application application_{readObjectFile(defaultWorldPath())};
};

}  // namespace orvane::standin
