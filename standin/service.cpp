#include "standin/service.h"

#include <fcntl.h>

#include <cerrno>
#include <stdexcept>

#include "core/descriptor_io.h"
#include "core/error_text.h"
#include "standin/refusal.h"

namespace orvane::standin {

namespace {

std::string run(Application& application, const MCPMutationRequest& request) {
  try {
    return encodeMCPMutationSuccess(application.call(request.method, request.args));
  } catch (const Refusal& refusal) {
    return encodeMCPMutationError(refusal.code(), refusal.what(), refusal.data());
  }
}

}  // namespace

Service::Service(Application& application, Script& script, const std::string& recordPath)
    : application_(application), script_(script) {
  if (recordPath.empty()) return;
  record_ = Descriptor(open(recordPath.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600));
  if (!record_.isOpen()) throw std::runtime_error("cannot open " + recordPath + ": " + errorText(errno));
}

Answer Service::answer(std::string_view request) {
  record(request);
  const MCPMutationRequestDecodeResult decoded = decodeMCPMutationRequest(request);
  if (const auto* malformed = std::get_if<MCPMutationMalformed>(&decoded)) {
    return {encodeMCPMutationError(MCPMutationErrorCode::validationFailed, malformed->reason), {}};
  }
  const auto& call = std::get<MCPMutationRequest>(decoded);
  const Behaviour behaviour = script_.next(call.method);
  Answer answer{behaviour.answer.has_value() ? *behaviour.answer : run(application_, call), behaviour.delay};
  if (behaviour.partialBytes < answer.bytes.size() && behaviour.partialBytes.has_value()) {
    answer.bytes.resize(*behaviour.partialBytes);
  }
  return answer;
}

void Service::record(std::string_view request) {
  if (!record_.isOpen()) return;
  std::string line(request);
  if (line.empty() || line.back() != '\n') line += '\n';
  const std::lock_guard lock(recordMutex_);
  const int error = writeFully(record_.get(), line);
  if (error != 0) throw std::runtime_error("cannot record a request: " + errorText(error));
}

}  // namespace orvane::standin
