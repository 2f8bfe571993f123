// How the stand-in misbehaves: a script names methods and what goes wrong with each.
//
// The script is a JSON object. Each key is a method, or "*" for every method without a key of its own. Its value is a
// behaviour for every call, or an array of behaviours for one call each, after which the method behaves. A behaviour is
// null for none, or an object with any of
//   "delaySeconds": number   the answer comes that much later
//   "partialBytes": integer  only so many bytes of the answer are sent
// and at most one of
//   "close": true            nothing is sent
//   "malformed": true        the answer is no complete JSON
//   "raw": string            the answer is that text
//   "rawHex": string         the answer is those bytes
//   "answerBytes": integer   the answer is a success of exactly that many bytes
//   "result": any            the answer is a success with that result
//   "error": {"code", "message", "data"}  the answer is that error, whatever its members are
// With one of the latter the method itself does not run.
#pragma once

#include <chrono>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "core/json.h"

namespace orvane::standin {

/// What goes wrong with one call.
struct Behaviour {
  std::chrono::milliseconds delay{0};
  std::optional<std::string> answer;        ///< sent in place of the method's own
  std::optional<std::size_t> partialBytes;  ///< how much of the answer is sent
};

class Script {
 public:
  /// Nothing goes wrong.
  Script() = default;
  /// Throws std::runtime_error for what it does not understand.
  explicit Script(const JSON::Object& script);

  /// What goes wrong with the next call of `method`. May be called from several threads.
  Behaviour next(const std::string& method);

 private:
  struct Sequence {
    bool endless;
    std::vector<Behaviour> behaviours;
    std::size_t used = 0;
  };

  std::map<std::string, Sequence> sequences_;
  std::mutex mutex_;
};

}  // namespace orvane::standin
