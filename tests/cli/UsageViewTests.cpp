#include "cli/CompactView.h"
#include "cli/DisplayWidth.h"
#include "cli/UsageView.h"
#include "presentation/PopoverContent.h"
#include "presentation/UsageStateMaker.h"
#include "support/Matchers.h"
#include "support/TestTerminal.h"
#include "text/TerminalText.h"

#include <string>

namespace vellmark::tests {
namespace {

const Localization words("en", "en_US", "UTC");

/// The reading of an agent with a long name of a window and of an account, and a failure.
std::vector<AgentBlockContent> agents() {
    AgentUsageSnapshot read =
        live(AgentProviderID::codex(), {window("session", 38, 300, 87),
                                        window("pool:Claude and GPT models|5h", 95, 300, 87)});
    read.plan = "Plus";
    read.accountLabel = "somebody.with.a.long.name@example.org";
    read.notes = {{SnapshotNote::ClaudeEndMarkerMissing{"doubtful"}}};
    const AgentUsageSnapshot unread =
        failed(AgentProviderID::claude(),
               UsageProviderError::other("A reason\nin several lines, longer than a narrow line"));
    return popoverContent(stateOf({read, unread}), "overview", noon, words).agents;
}

TEST(UsageView, NoLineIsWiderThanTheTerminalAndNoFigureIsCut) {
    for (int columns = 24; columns <= 130; ++columns) {
        const TestTerminal terminal(columns);
        const TerminalOutput output(terminal.descriptor(), {{"LANG", "en_US.UTF-8"}});
        const std::string text = stripANSI(UsageView(output, words).text(agents()));
        for (const std::string_view line : nonEmptyLines(text)) {
            EXPECT_LE(displayWidth(line), columns) << line;
        }
        for (const char* shown : {"62% left", "5% left", "doubtful", "Runs out in"}) {
            EXPECT_THAT(text, HasSubstr(shown)) << columns;
        }
    }
}

TEST(UsageView, ABarShowsWhatIsLeftAndTheEvenPace) {
    AgentBlockContent shown = agents().front();
    shown.rows.resize(1);
    const TestTerminal terminal(27);
    const auto barFor = [&](const char* locale, double share, std::optional<double> pace) {
        shown.rows[0].bar = {.filledShare = share, .paceMark = pace};
        const TerminalOutput output(terminal.descriptor(), {{"LANG", locale}, {"NO_COLOR", "1"}});
        const std::string text = UsageView(output, words).text({shown});
        const std::size_t start = text.find("    ", text.find("Session")) + 4;
        return text.substr(start, text.find("  ", start) - start);
    };
    const char* utf8 = "en_US.UTF-8";
    EXPECT_EQ(barFor(utf8, 0.5, 0.25), "███┃██▌░░░░░░");
    EXPECT_EQ(barFor(utf8, 0.5, 1.0), "██████▌░░░░░┃");
    EXPECT_EQ(barFor(utf8, 0.001, std::nullopt), "▏░░░░░░░░░░░░");
    EXPECT_EQ(barFor(utf8, 0.999, std::nullopt), "████████████▉");
    EXPECT_EQ(barFor(utf8, 1, std::nullopt), "█████████████");
    EXPECT_EQ(barFor("C", 0.5, 0.25), "###|###------");
}

TEST(UsageView, ColoursMarksAndNoSentence) {
    const TerminalOutput output = [] {
        TerminalOutput always(-1, {{"LANG", "en_US.UTF-8"}});
        always.chooseColors(ColorChoice::always);
        return always;
    }();
    const std::string text = UsageView(output, words).text(agents());
    EXPECT_THAT(text, HasSubstr("\033[31m!\033[0m Runs out in"));
    EXPECT_THAT(text, HasSubstr("\033[31m●\033[0m "));
    EXPECT_THAT(text, Not(ContainsRegex("\033\\[3[0-9]m[^\033]*[a-z]")));
}

TEST(CompactView, HasTwoRowsAtMostWhateverTheWidth) {
    const auto blocks = agents();
    const VerdictLine verdict{"Codex critical, Claude Code unreadable · read at 1:46 PM",
                              "Codex critical (+1) · read at 1:46 PM"};
    for (int columns = 24; columns <= 130; ++columns) {
        const TestTerminal terminal(columns, 2);
        const TerminalOutput output(terminal.descriptor(), {{"LANG", "en_US.UTF-8"}});
        const auto rows = compactRows(blocks, verdict, output, words);
        EXPECT_LE(rows.size(), 2u) << columns;
        std::string text;
        for (const std::string& row : rows) {
            EXPECT_LE(displayWidth(stripANSI(row)), columns) << row;
            text += row + "\n";
        }
        EXPECT_THAT(text, HasSubstr(" 5%")) << columns;
        EXPECT_THAT(text, HasSubstr("Claude")) << columns;
    }
}

} // namespace
} // namespace vellmark::tests
