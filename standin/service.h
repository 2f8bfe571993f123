// From the bytes of a request to the bytes of an answer: records, decodes, lets the application answer and the script
// interfere.
#pragma once

#include <mutex>
#include <string>
#include <string_view>

#include "core/descriptor.h"
#include "standin/application.h"
#include "standin/listener.h"
#include "standin/script.h"

namespace orvane::standin {

class Service {
 public:
  /// Uses `application` and `script`, which must outlive it. Requests are appended to the file at `recordPath` unless
  /// that is empty; throws std::runtime_error if the file cannot be opened.
  Service(Application& application, Script& script, const std::string& recordPath);

  /// The answer to `request`. May be called from several threads.
  Answer answer(std::string_view request);

 private:
  void record(std::string_view request);

  Application& application_;
  Script& script_;
  Descriptor record_;
  std::mutex recordMutex_;
};

}  // namespace orvane::standin
