#include <algorithm>

#include "tests/standin/application_support.h"
#include "tests/support/decided_tools.h"

namespace orvane::standin {
namespace {

using ApplicationTest = StandinTest;

TEST_F(ApplicationTest, ServesEveryForwardedMethod) {
  std::vector<std::string> forwarded;
  for (const test::DecidedTool& tool : test::decidedTools()) {
    if (!tool.marks.contains("local")) forwarded.push_back(tool.name);
  }
  std::sort(forwarded.begin(), forwarded.end());
  EXPECT_EQ(application_.methods(), forwarded);
}

TEST_F(ApplicationTest, UnknownMethodIsRefused) {
  EXPECT_EQ(refusal("list_augments"), "validation_failed: unknown method: list_augments");
}

TEST_F(ApplicationTest, ConsentCoversChangesAndMeetingsApart) {
  const JSON::Object world = readObjectFile(defaultWorldPath());
  Application application(world, Consent::denied, Consent::unanswered);
  const auto codeOf = [&](const char* method) {
    try {
      application.call(method, {});
    } catch (const Refusal& refused) {
      return refused.code();
    }
    return MCPMutationErrorCode::internalError;
  };
  EXPECT_EQ(codeOf("set_active_persona"), MCPMutationErrorCode::consentDenied);
  EXPECT_EQ(codeOf("get_meeting"), MCPMutationErrorCode::consentPendingTimeout);
  EXPECT_NO_THROW(application.call("list_personas", {}));
}

}  // namespace
}  // namespace orvane::standin
