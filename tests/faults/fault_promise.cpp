#include <sys/wait.h>

#include <algorithm>
#include <cerrno>
#include <set>

#include "tests/faults/fault_test.h"
#include "tests/support/independent_json.h"

namespace orvane::test {

namespace {

const std::string answerHead = R"({"jsonrpc":"2.0","id":)";

// Requests whose answers ask the system for nothing.
const std::set<int> pureRequests{2, 3, 14, 15};

bool isLackOfMemory(const Json& answer) {
  return answer == parseJson(R"({"jsonrpc":"2.0","id":null,
                                 "error":{"code":-32603,"message":"Internal error: std::bad_alloc"}})");
}

std::string kindName(int kind) {
  return kind == shortTransfer ? "short" : kind == nothing ? "nothing" : kind == late ? "late" : std::to_string(kind);
}

// The line of `output` that answers `id`; empty where there is none.
std::string answerTo(int id, const std::string& output) {
  const std::size_t start = output.find(answerHead + std::to_string(id) + ",");
  return start == std::string::npos ? "" : output.substr(start, output.find('\n', start) - start);
}

}  // namespace

std::string textOf(const std::vector<Fault>& faults) {
  std::string text;
  for (const Fault& fault : faults) {
    text += (text.empty() ? "" : ",") + fault.function + ":" + fault.calls + ":" + kindName(fault.kind);
  }
  return text;
}

bool isHarmless(const std::string& function, int kind) {
  static const std::set<std::string> dispensable{"tee", "recv", "pread", "lseek", "shutdown", "setsockopt"};
  static const std::set<std::string> neverRepeated{"socket",  "connect",    "getsockopt",     "rename", "fstat",
                                                   "stat",    "mkdir",      "pthread_create", "pipe2",  "readlink",
                                                   "readdir", "getentropy", "getpwuid_r"};
  if (kind == shortTransfer || kind == late || kind == EEXIST || kind == ERANGE) return true;
  if (kind == nothing) return function == "writev";
  return dispensable.contains(function) || (kind == EINTR && !neverRepeated.contains(function));
}

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::size_t start = 0;
  for (std::size_t end; (end = text.find('\n', start)) != std::string::npos; start = end + 1) {
    lines.push_back(text.substr(start, end - start));
  }
  EXPECT_EQ(start, text.size()) << "an unfinished line: " << text.substr(start, 300);
  return lines;
}

FaultyOutcome FaultTest::check(const std::vector<Fault>& faults, InputKind input) {
  FaultyOutcome outcome = session_.run(textOf(faults), input);
  const Price price = priceOf(faults, outcome);
  EXPECT_TRUE(outcome.hasEnded) << "the program hung";
  EXPECT_TRUE(WIFEXITED(outcome.status) && WEXITSTATUS(outcome.status) == 0) << "wait status " << outcome.status;
  checkAnswers(outcome, price);
  checkPreferences(outcome);
  EXPECT_TRUE(outcome.strayFiles.empty()) << outcome.strayFiles.front();
  if (!price.mayCutDiagnostic) {
    for (const std::string& line : linesOf(outcome.errors)) {
      EXPECT_TRUE(line.starts_with("orvane-mcp: ") || line.starts_with("ContextAuditLog: ")) << line;
    }
  }
  if (!price.mayCutRecord) {
    for (const std::string& line : linesOf(outcome.auditLog)) {
      EXPECT_TRUE(parseJson(line).is_object()) << line;
    }
  }
  return outcome;
}

FaultTest::Price FaultTest::priceOf(const std::vector<Fault>& faults, const FaultyOutcome& outcome) {
  Price price;
  bool isLineShort = false;
  bool isRecordShort = false;
  bool isRecordFailing = false;
  for (std::size_t i = 0; i < faults.size(); ++i) {
    const auto& [function, calls, kind] = faults[i];
    const auto& [onInput, onOutput, onErrors, elsewhere] = outcome.faults[i].hits;
    // Where there is nothing to read or no room yet, the program waits.
    const bool isPassing = kind == EINTR || kind == EAGAIN || kind == shortTransfer || kind == nothing || kind == late;
    const bool isFailing = function == "poll" ? kind != EINTR : !isPassing;
    if (function == "read" || function == "poll") price.mayEndEarly |= isFailing && onInput > 0;
    if (function == "writev" || function == "poll") price.lostAnswers += isFailing ? onOutput : 0;
    isLineShort |= function == "writev" && kind == shortTransfer && onOutput > 0;
    isRecordShort |= function == "write" && kind == shortTransfer && elsewhere > 0;
    isRecordFailing |= function == "write" && (kind > 0 || kind == nothing) && kind != EINTR && elsewhere > 0;
    price.mayCutDiagnostic |= onErrors > 0;
    if (function == "malloc" && outcome.faults[i].hasFallen()) price.mayLackMemory = price.mayEndEarly = true;
  }
  price.mayBreakOff = isLineShort && price.lostAnswers > 0;
  price.mayCutRecord = isRecordShort && isRecordFailing;
  return price;
}

void FaultTest::checkAnswers(const FaultyOutcome& outcome, const Price& price) const {
  std::string output = outcome.output;
  bool hasBrokenOff = false;
  if (price.mayBreakOff && !output.empty() && output.back() != '\n') {
    const std::size_t start = output.rfind('\n') + 1;
    const std::string rest = output.substr(start);
    EXPECT_EQ(rest.substr(0, answerHead.size()), answerHead.substr(0, rest.size()));
    output.resize(start);
    hasBrokenOff = true;
  }
  int next = 1;
  long lost = 0;
  long nameless = 0;
  for (const std::string& line : linesOf(output)) {
    checkResponseLine(line);
    const Json answer = parseJson(line);
    if (price.mayLackMemory && isLackOfMemory(answer)) {
      ++nameless;
      continue;
    }
    ASSERT_TRUE(answer.at("id").is_int64()) << line.substr(0, 300);
    const auto id = static_cast<int>(answer.at("id").as_int64());
    if (!price.mayLackMemory && pureRequests.contains(id)) {
      EXPECT_EQ(line, answerTo(id, undisturbed_.output));
    }
    lost += id - next;
    ASSERT_GE(id, next) << "answered twice or out of order";
    next = id + 1;
  }
  const int unanswered = session_.requestCount() + 1 - next;
  const bool isEndKnown = !price.mayEndEarly && !hasBrokenOff;
  EXPECT_LE(lost + (isEndKnown ? unanswered : 0), nameless + price.lostAnswers) << outcome.output.size();
  // A notification that cannot be read for want of memory may pass for a request.
  constexpr int notifications = 1;
  EXPECT_LE(nameless, lost + unanswered + notifications) << "more answers than lines";
}

// The notes are the old ones or hold whole new lines, and those that were reported as kept.
void FaultTest::checkPreferences(const FaultyOutcome& outcome) const {
  std::vector<std::string> allowed{std::string(session_.oldPreferences())};
  for (const auto& [id, line] : FaultySession::notes()) {
    for (std::size_t i = allowed.size(); i-- > 0;) allowed.push_back(allowed[i] + std::string(line));
  }
  EXPECT_NE(std::find(allowed.begin(), allowed.end(), outcome.preferences), allowed.end()) << outcome.preferences;
  for (const auto& [id, line] : FaultySession::notes()) {
    if (answerTo(id, outcome.output).find(R"(\"ok\": true)") != std::string::npos) {
      EXPECT_NE(outcome.preferences.find(line), std::string::npos) << "reported as kept: " << line;
    }
  }
}

void FaultTest::checkUnchanged(const FaultyOutcome& outcome) const {
  EXPECT_TRUE(outcome.output == undisturbed_.output) << "other answers than without the fault";
  EXPECT_EQ(outcome.preferences, undisturbed_.preferences);
  EXPECT_EQ(linesOf(outcome.auditLog).size(), 4U);
  EXPECT_EQ(outcome.errors, undisturbed_.errors);
}

long FaultTest::callsOf(const std::string& function, InputKind input) {
  const auto [found, isNew] = calls_.try_emplace({function, input}, 0);
  if (isNew) found->second = session_.run(function + ":0:0", input).faults.front().calls;
  return found->second;
}

}  // namespace orvane::test
