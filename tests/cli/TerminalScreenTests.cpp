#include "cli/CommandTest.h"
#include "cli/TerminalKeys.h"
#include "cli/TerminalScreen.h"
#include "support/ProcessCensus.h"
#include "support/TestTerminal.h"

#include <csignal>
#include <stdexcept>
#include <tuple>

namespace vellmark::tests {
namespace {

constexpr const char* leftPage = "\033[?25h\033[?1049l";

/// Everything that a terminal's settings consist of.
auto bits(const termios& settings) {
    return std::tuple(settings.c_iflag, settings.c_oflag, settings.c_cflag, settings.c_lflag,
                      std::string(std::begin(settings.c_cc), std::end(settings.c_cc)),
                      cfgetispeed(&settings), cfgetospeed(&settings));
}

TEST(TerminalScreen, AnExceptionFindsTheSettingsAsTheyWere) {
    const TestTerminal terminal(80);
    const auto found = bits(terminal.settings());
    TerminalOutput output(-1, {});
    try {
        const TerminalScreen screen(output, terminal.descriptor());
        EXPECT_NE(bits(terminal.settings()), found);
        throw std::runtime_error("in the midst of a page");
    } catch (const std::runtime_error&) {
        EXPECT_EQ(bits(terminal.settings()), found);
    }
}

class WatchCommand : public CommandTest {
protected:
    /// Agents that are read at once leave nothing to wait for.
    void SetUp() override { setPreferences(R"({"DisabledProviders":["claude"]})"); }
};

TEST_F(WatchCommand, DrawsAnewInTheLanguageThatIsChosenMeanwhile) {
    ProgramRun watch(setting({"watch"}, 90));
    ASSERT_TRUE(watch.shows("q quit"));
    setPreferences(R"({"DisabledProviders":["claude"],"AppLanguage":"de"})");
    EXPECT_TRUE(watch.shows("q beenden"));
    watch.type("q");
    watch.wait();
    // A language that was asked for stays.
    ProgramRun english(setting({"watch", "--language", "en"}, 90));
    ASSERT_TRUE(english.shows("q quit"));
    setPreferences(R"({"DisabledProviders":["claude"],"AppLanguage":"it","FirstFigure":"used"})");
    EXPECT_TRUE(english.shows("% used"));
    english.type("q");
    EXPECT_THAT(english.wait().output, Not(HasSubstr("q esci")));
}

TEST_F(WatchCommand, LeavesTheTerminalBitForBitAsItWasHoweverItEnds) {
    const std::tuple<const char*, int, const char*, int> cases[] = {
        {"q", 0, "q", 0},
        {"Ctrl-C", 0, "\x03", 128 + SIGINT},
        {"SIGINT", SIGINT, "", 128 + SIGINT},
        {"SIGTERM", SIGTERM, "", 128 + SIGTERM},
        {"SIGHUP", SIGHUP, "", 128 + SIGHUP},
        {"SIGQUIT", SIGQUIT, "", 128 + SIGQUIT},
    };
    for (const auto& [name, signal, key, status] : cases) {
        ProgramRun watch(setting({"watch"}, 90));
        ASSERT_TRUE(watch.shows("\033[?1049h")) << name;
        ASSERT_TRUE(watch.shows("q quit")) << name;
        EXPECT_EQ(watch.terminalSettings().c_lflag & (ECHO | ICANON), 0u) << name;
        if (signal != 0) {
            kill(watch.pid(), signal);
        } else {
            watch.type(key);
        }
        const ProgramResult result = watch.wait();
        EXPECT_EQ(result.status, status) << name;
        EXPECT_THAT(result.output, EndsWith(leftPage)) << name;
        EXPECT_EQ(bits(watch.terminalSettings()), bits(watch.firstSettings())) << name;
    }
    expectNothingLeft();
}

TEST_F(WatchCommand, GivesTheTerminalBackWhileItIsStoppedAndTakesItAgain) {
    for (const bool byKey : {false, true}) {
        ProgramRun::Setting inShell = setting({"watch"}, 90);
        inShell.shellCommands = "echo STOPPED; read line; fg; echo ENDED";
        ProgramRun watch(inShell);
        ASSERT_TRUE(watch.shows("q quit"));
        pid_t program = 0;
        ASSERT_TRUE(becomesTrue([&] {
            const auto children = directChildren(watch.pid());
            program = children.empty() ? 0 : children.front();
            return program != 0;
        }));
        if (byKey) {
            watch.type("\x1a");
        } else {
            kill(program, SIGTSTP);
        }
        ASSERT_TRUE(watch.shows("STOPPED"));
        EXPECT_EQ(bits(watch.terminalSettings()), bits(watch.firstSettings()));
        watch.forget();
        watch.type("\n");
        ASSERT_TRUE(watch.shows("\033[?1049h"));
        ASSERT_TRUE(watch.shows("q quit"));
        watch.type("q");
        ASSERT_TRUE(watch.shows("ENDED"));
        EXPECT_EQ(watch.wait().status, 0);
        EXPECT_EQ(bits(watch.terminalSettings()), bits(watch.firstSettings()));
    }
    expectNothingLeft();
}

TEST_F(WatchCommand, ScrollsAndSaysWhatIsOutOfSight) {
    ProgramRun::Setting low = setting({"watch"}, 80);
    low.rows = 10;
    ProgramRun watch(low);
    ASSERT_TRUE(watch.shows("↓ 7 more lines: Antigravity"));
    watch.forget();
    watch.type("\033[6~");
    ASSERT_TRUE(watch.shows("↑ 7 more lines: Codex, Antigravity"));
    watch.forget();
    watch.type("kg");
    ASSERT_TRUE(watch.shows("↓ 1 more line: Antigravity  ↑ 6 more lines: Codex"));
    ASSERT_TRUE(watch.shows("↓ 7 more lines: Antigravity  q quit"));
    watch.type("q");
    EXPECT_EQ(watch.wait().status, 0);
}

TEST_F(WatchCommand, CompactTakesTwoRows) {
    ProgramRun::Setting low = setting({"watch", "--compact"}, 60);
    low.rows = 2;
    ProgramRun watch(low);
    ASSERT_TRUE(watch.shows("Antigravity 7%"));
    ASSERT_TRUE(watch.shows("Codex 71%"));
    watch.type("q");
    const ProgramResult result = watch.wait();
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.output, Not(HasSubstr("q quit")));
}

TEST(TerminalKeys, FindsKeysHoweverTheirBytesArrive) {
    using Kind = TerminalKey::Kind;
    const std::string typed = "q\033[A\033OB\033[5~\033[6~\033[H\033[4~\033[200~\033xj";
    const std::vector<TerminalKey> expected = {
        {Kind::character, 'q'}, {Kind::up},   {Kind::down}, {Kind::pageUp},
        {Kind::pageDown},       {Kind::home}, {Kind::end},  {Kind::character, 'x'},
        {Kind::character, 'j'}};
    EXPECT_EQ(TerminalKeys().take(typed), expected);
    TerminalKeys bytewise;
    std::vector<TerminalKey> found;
    for (const char byte : typed) {
        for (const TerminalKey& key : bytewise.take({&byte, 1})) {
            found.push_back(key);
        }
    }
    EXPECT_EQ(found, expected);
}

} // namespace
} // namespace vellmark::tests
