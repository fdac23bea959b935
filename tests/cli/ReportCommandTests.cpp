#include "cli/CommandTest.h"
#include "platform/Descriptor.h"

#include <algorithm>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vellmark::tests {
namespace {

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
    EXPECT_THAT(run({"report", "--what-happened", "It hung in /Users/berta/x"}).output,
                HasSubstr("\n\nWhat happened?\nIt hung in ~/x\n\nAgents\n"));
}

TEST_F(ReportCommand, SavesForTheUserAloneOrNotAtAll) {
    const TemporaryDirectory target;
    const auto file = target / "report.txt";
    EXPECT_EQ(run({"report", "--output", file.string()}).status, 0);
    EXPECT_THAT(contentOf(file), HasSubstr("Vellmark support report"));
    EXPECT_EQ(fs::status(file).permissions(), fs::perms::owner_read | fs::perms::owner_write);

    const std::string mistyped = (target / "no/such/report.txt").string();
    const auto refused = run({"report", "--output", mistyped});
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.output, "");
    EXPECT_THAT(refused.errors, HasSubstr(mistyped));
    EXPECT_FALSE(fs::exists(target / "no"));
}

TEST_F(ReportCommand, WritesToWhatItIsGivenAndReplacesNothingSpecial) {
    const TemporaryDirectory target;
    const auto toStandardOutput = run({"report", "--output", "-"});
    EXPECT_THAT(toStandardOutput.output, StartsWith("Vellmark support report"));
    EXPECT_FALSE(fs::exists("-"));
    for (const char* name : {"/dev/stdout", "/proc/self/fd/1"}) {
        EXPECT_EQ(run({"report", "--output", name}).output.substr(0, 23), "Vellmark support report")
            << name;
    }

    const auto pipe = target / "pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const Descriptor reader(::open(pipe.c_str(), O_RDONLY | O_NONBLOCK));
    EXPECT_EQ(run({"report", "--output", pipe.string()}).status, 0);
    std::string received(1 << 16, '\0'); // a pipe holds as much
    received.resize(static_cast<std::size_t>(
        std::max<ssize_t>(::read(reader.get(), received.data(), received.size()), 0)));
    EXPECT_THAT(received, HasSubstr("Vellmark support report"));
    EXPECT_TRUE(fs::is_fifo(pipe));

    fs::create_symlink(target / "report.txt", target / "link");
    target.write("report.txt", "old, and open to all");
    fs::permissions(target / "report.txt", fs::perms(0644));
    EXPECT_EQ(run({"report", "--output", (target / "link").string()}).status, 0);
    EXPECT_TRUE(fs::is_symlink(target / "link"));
    EXPECT_EQ(fs::status(target / "report.txt").permissions(), fs::perms(0600));
}

TEST_F(ReportCommand, AVersionCannotSteerTheTerminal) {
    // A line break, a colour, and the control characters of one byte that some terminals obey.
    sandbox.installScript("agy",
                          "printf '1.0\\033]0;title\\007\\302\\233'31m\\342\\200\\256'x\\n'");
    for (const std::vector<std::string>& command :
         std::vector<std::vector<std::string>>{{"report"}, {"agents"}, {"agents", "--json"}}) {
        const auto result = run(command);
        EXPECT_THAT(result.output,
                    AllOf(HasSubstr("1.0"), Not(HasSubstr("\x1b")), Not(HasSubstr("\x07")),
                          Not(HasSubstr("\xC2\x9B")), Not(HasSubstr("\xE2\x80\xAE"))))
            << command.front();
    }
}

} // namespace
} // namespace vellmark::tests
