#include "cli/CommandTest.h"

namespace vellmark::tests {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

using ReportCommand = CommandTest;

TEST_F(ReportCommand, RedactsStandardInputByteForByte) {
    const std::string home = sandbox.machine().home.string();
    const std::string text = "\xFF " + home + "/x anna@example.org\r\ntoken=abcdefghij0123456789";
    EXPECT_EQ(run({"redact"}, text).output, "\xFF ~/x …@…\r\ntoken <redacted>");
    EXPECT_EQ(run({"redact", "--include-emails", "--home", "/nowhere", "-"}, text).output,
              "\xFF " + home + "/x anna@example.org\r\ntoken <redacted>");
    const auto missing = run({"redact", "/no/such/file"});
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.output, "");
    EXPECT_NE(missing.errors, "");
}

TEST_F(ReportCommand, TellsTheStateOfThisMachine) {
    ASSERT_EQ(run({"usage", "--agent", "codex"}).status, 0);
    sandbox.uninstall("agy");
    sandbox.play("claude", "logged-out");
    const ProgramResult result = run({"report"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_THAT(result.output,
                AllOf(HasSubstr("Program: ~/.local/bin/codex"), HasSubstr("Version: codex-cli"),
                      HasSubstr("Logged in: yes"), HasSubstr("Logged in: no"),
                      HasSubstr("Program: not found"), HasSubstr("Session 78%"),
                      Not(HasSubstr(sandbox.machine().home.string())), Not(HasSubstr("@example"))));
    EXPECT_THAT(run({"report", "--include-emails"}).output,
                HasSubstr("e-mail addresses were left in"));
}

TEST_F(ReportCommand, SavesForTheUserAloneOrNotAtAll) {
    const TemporaryDirectory target;
    const auto file = target / "report.txt";
    EXPECT_EQ(run({"report", "--output", file.string()}).status, 0);
    EXPECT_THAT(contentOf(file), HasSubstr("Vellmark support report"));
    EXPECT_EQ(std::filesystem::status(file).permissions(),
              std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);

    const auto refused = run({"report", "--output", "/proc/no/report.txt"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.output, "");
    EXPECT_THAT(refused.errors, HasSubstr("/proc/no/report.txt"));
}

} // namespace
} // namespace vellmark::tests
