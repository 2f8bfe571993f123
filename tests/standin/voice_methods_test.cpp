#include "tests/standin/application_support.h"

namespace orvane::standin {
namespace {

using VoiceMethodsTest = StandinTest;

TEST_F(VoiceMethodsTest, SpeakCountsCharactersAndGroupsLines) {
  const std::string longest(1999, 'x');
  EXPECT_TRUE(flagIn(call("speak", R"({"text":")" + longest + "é\"}"), "queued"));
  EXPECT_EQ(refusal("speak", R"({"text":")" + longest + "xx\"}"),
            R"(validation_failed: text is too long: 2001 characters, at most 2000 per call )"
            R"({"characters":2001,"maxCharacters":2000})");
  EXPECT_EQ(textIn(call("speak", R"({"text":"a","_agent":"demo-agent"})"), "voice"), "birch");
  call("speak", R"({"text":"a","identifier":"turn"})");
  EXPECT_EQ(integerIn(call("speak", R"({"text":"b","identifier":"turn"})"), "line"), 2);
  EXPECT_EQ(refusal("speak", R"({"text":"a","voice":"x"})"),
            R"(validation_failed: unknown voice: x {"validVoices":["amber","birch","cobalt"]})");
}

}  // namespace
}  // namespace orvane::standin
