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

} // namespace
} // namespace vellmark::tests
