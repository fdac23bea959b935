#include "probes/ToolVersion.h"
#include "probes/VersionNumber.h"
#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace vellmark::tests {
namespace {

class ToolVersion : public ::testing::Test {
protected:
    std::optional<std::string> versionPrintedBy(const std::string& script) {
        return toolVersion(machine, directory.writeExecutable("tool", "#!/bin/sh\n" + script));
    }

    TemporaryDirectory directory;
    Machine machine = Machine::sandbox(directory.path());
};

TEST_F(ToolVersion, IsTheFirstLineThatIsNotEmptyAndAtMost120Characters) {
    EXPECT_EQ(versionPrintedBy("printf '\\n  %s 1.2.3 (beta) \\r\\nmore\\n' \"$1\""),
              "--version 1.2.3 (beta)");
    std::string expected;
    for (int count = 0; count < 120; ++count) {
        expected += "ä";
    }
    EXPECT_EQ(versionPrintedBy("yes ä | head -n 300 | tr -d '\\n'"), expected);
}

TEST_F(ToolVersion, IsAbsentWhenThereIsNone) {
    EXPECT_EQ(versionPrintedBy("echo 1.0 >&2"), std::nullopt);
    EXPECT_EQ(versionPrintedBy("printf '\\377\\376\\n'"), std::nullopt);
    EXPECT_EQ(toolVersion(machine, directory.write("plain", "1.0")), std::nullopt);
    EXPECT_EQ(toolVersion(machine, directory / "missing"), std::nullopt);
    EXPECT_EQ(toolVersion(machine, directory.path()), std::nullopt);
    EXPECT_EQ(toolVersion(machine, directory.writeExecutable("broken", "#!/no/such/shell\n")),
              std::nullopt);
}

TEST_F(ToolVersion, IsAskedInAPlaceOfItsOwnWhateverLiesWhereTheProgramWasStarted) {
    EXPECT_EQ(versionPrintedBy("pwd"), (machine.supportDirectory() / "VersionWorkspace").string());
    // Where that cannot be made, in one that nobody else writes to.
    fs::remove_all(machine.supportDirectory());
    directory.write("file", "");
    machine.applicationSupport = directory / "file";
    EXPECT_EQ(versionPrintedBy("pwd"), "/");
    // And in the filtered environment.
    machine.environment["CODEX_SECRET"] = "leaked";
    EXPECT_EQ(versionPrintedBy("echo \"v1$CODEX_SECRET\""), "v1");
}

TEST(VersionNumber, IsFoundInWhatAToolSays) {
    const std::pair<const char*, std::optional<VersionNumber>> cases[] = {
        {"1.1.11", VersionNumber{{1, 1, 11}}},
        {"agy version v1.1.9-beta.2 (2026.1)", VersionNumber{{1, 1, 9}}},
        {"2.1.330 (Claude Code)", VersionNumber{{2, 1, 330}}},
        {"codex-cli 0.169", VersionNumber{{0, 169, 0}}},
        {"1.2.3.4", VersionNumber{{1, 2, 3}}},
        {"7", std::nullopt},
        {"1234567.1", std::nullopt},
        {"1..2", std::nullopt},
        {"", std::nullopt},
    };
    for (const auto& [text, expected] : cases) {
        EXPECT_EQ(VersionNumber::parse(text), expected) << text;
    }
    EXPECT_LT(*VersionNumber::parse("1.1.9"), *VersionNumber::parse("1.1.11"));
    EXPECT_EQ(VersionNumber::parse("0.169")->text(), "0.169.0");
}

} // namespace
} // namespace vellmark::tests
