// How a method of the stand-in says no.
#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

#include "protocol/mcp_mutation.h"

namespace orvane::standin {

/// Thrown by a method that refuses or fails a call; becomes the error response.
class Refusal : public std::runtime_error {
 public:
  Refusal(MCPMutationErrorCode code, const std::string& message, std::optional<JSON> data = std::nullopt)
      : std::runtime_error(message), code_(code), data_(std::move(data)) {}

  MCPMutationErrorCode code() const { return code_; }
  const std::optional<JSON>& data() const { return data_; }

 private:
  MCPMutationErrorCode code_;
  std::optional<JSON> data_;
};

/// A refusal of the arguments: validation_failed, with `data` to help the agent correct itself.
inline Refusal invalid(const std::string& message, std::optional<JSON> data = std::nullopt) {
  return {MCPMutationErrorCode::validationFailed, message, std::move(data)};
}

}  // namespace orvane::standin
