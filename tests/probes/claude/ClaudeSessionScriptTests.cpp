#include "probes/claude/ClaudeSessionScript.h"
#include "support/ProjectDirectories.h"
#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>

namespace vellmark::tests {
namespace {

TEST(ClaudeSessionScript, IsTheTextThatTheCLIWasTriedWith) {
    EXPECT_EQ(claudeSessionScript(),
              contentOf(sourceFile("tests/probes/claude/data/session-script.exp")));
}

TEST(ClaudeSessionScript, TakesEveryWaitFromTheTimings) {
    const ClaudeSessionTimings timings{101, 102, 103, 104, 105, 106, 107,
                                       108, 109, 110, 111, 112, 113};
    const std::string script = claudeSessionScript(timings);
    for (int number = 101; number <= 113; ++number) {
        const std::string text = std::to_string(number);
        EXPECT_NE(script.find(text), std::string::npos) << text;
    }
    EXPECT_EQ(script.find('@'), std::string::npos);
}

} // namespace
} // namespace vellmark::tests
