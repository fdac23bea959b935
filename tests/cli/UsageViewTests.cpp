#include "cli/DisplayWidth.h"
#include "cli/UsageView.h"
#include "platform/Descriptor.h"
#include "presentation/PopoverContent.h"
#include "presentation/UsageStateMaker.h"
#include "text/TerminalText.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <fcntl.h>

namespace vellmark::tests {
namespace {

using testing::HasSubstr;

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
    const Descriptor controller(::posix_openpt(O_RDWR | O_NOCTTY));
    ASSERT_EQ(::unlockpt(controller.get()), 0);
    const Descriptor terminal(::open(::ptsname(controller.get()), O_RDWR | O_NOCTTY));
    for (int columns = 24; columns <= 130; ++columns) {
        const std::string width = std::to_string(columns);
        const TerminalOutput output(terminal.get(), {{"TERM", "xterm"}, {"COLUMNS", width}});
        const std::string text = stripANSI(UsageView(output, words).text(agents()));
        for (const std::string_view line : nonEmptyLines(text))
            EXPECT_LE(displayWidth(line), columns) << line;
        for (const char* shown : {"62% left", "5% left", "doubtful", "Runs out in"})
            EXPECT_THAT(text, HasSubstr(shown)) << columns;
    }
}

TEST(UsageView, ABarShowsWhatIsLeftAndTheEvenPace) {
    AgentBlockContent shown = agents().front();
    shown.rows.resize(1);
    const auto barFor = [&](double share, std::optional<double> pace) {
        shown.rows[0].bar = {.filledShare = share, .paceMark = pace};
        const TerminalOutput output(-1, {});
        const std::string text = UsageView(output, words).text({shown});
        const std::size_t start = text.find("Session") + std::string("Session  ").size();
        return text.substr(start, text.find("  ", start) - start);
    };
    EXPECT_EQ(barFor(0.5, std::nullopt), "━━━━━━━━━━━━────────────");
    EXPECT_EQ(barFor(0.5, 0.25), "━━━━━━╋━━━━━────────────");
    EXPECT_EQ(barFor(0.5, 1.0), "━━━━━━━━━━━━───────────┼");
    EXPECT_EQ(barFor(0.001, std::nullopt), "━───────────────────────");
    EXPECT_EQ(barFor(0.999, std::nullopt), "━━━━━━━━━━━━━━━━━━━━━━━─");
    EXPECT_EQ(barFor(0, 0.0), "┼───────────────────────");
    EXPECT_EQ(barFor(1, std::nullopt), "━━━━━━━━━━━━━━━━━━━━━━━━");
}

} // namespace
} // namespace vellmark::tests
