#include "cli/DisplayWidth.h"
#include "cli/UsageView.h"
#include "text/TerminalText.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace vellmark {
namespace {

using testing::HasSubstr;

/// An output on a terminal of the given width.
class Terminal {
public:
    explicit Terminal(unsigned short columns) : master_(posix_openpt(O_RDWR | O_NOCTTY)) {
        grantpt(master_);
        unlockpt(master_);
        descriptor_ = open(ptsname(master_), O_RDWR | O_NOCTTY);
        winsize size{};
        size.ws_col = columns;
        ioctl(descriptor_, TIOCSWINSZ, &size);
    }
    ~Terminal() {
        close(descriptor_);
        close(master_);
    }
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    TerminalOutput output() const { return TerminalOutput(descriptor_, {{"TERM", "xterm"}}); }

private:
    int master_;
    int descriptor_ = -1;
};

AgentBlockContent agent() {
    UsageRowContent session{.windowID = "session",
                            .label = "Session",
                            .fullLabel = "Session",
                            .value = "62% left",
                            .bar = {.filledShare = 0.62, .paceMark = 0.3},
                            .reset = "Resets in 1 h 27 min · 4:15 PM"};
    UsageRowContent pool{.windowID = "pool:Claude and GPT models|5h",
                         .label = "Claude · GPT · Session",
                         .fullLabel = "Claude and GPT models · Session",
                         .value = "5% left",
                         .bar = {.filledShare = 0.05, .health = UsageHealth::critical},
                         .reset = "Resets in 3 d 18 h · Mon 9:10 AM",
                         .health = UsageHealth::critical};
    pool.forecast = {{.text = "Runs out in 16 min, 70 min before reset",
                      .briefText = "Runs out in 16 min",
                      .tone = UsageHealth::critical}};
    return {.id = AgentProviderID::codex(),
            .name = "Codex",
            .plan = "Plus",
            .account = "somebody.with.a.long.name@example.org",
            .state = AgentBlockContent::State::live,
            .health = UsageHealth::critical,
            .statusText = "Critical",
            .rows = {session, pool},
            .notes = {"The reading is doubtful, and this tells why it is so"}};
}

AgentBlockContent failedAgent() {
    AgentBlockContent failed{.id = AgentProviderID::claude(),
                             .name = "Claude",
                             .state = AgentBlockContent::State::failed,
                             .statusText = "Unavailable"};
    failed.failure = {{.reason = "A reason\nin several lines that is longer than a narrow line",
                       .wayOut = WayOut::logIn}};
    return failed;
}

TEST(UsageView, NoLineIsWiderThanTheTerminalAndNoFigureIsCut) {
    const Localization words("en");
    for (unsigned short columns = 24; columns <= 130; ++columns) {
        const Terminal terminal(columns);
        const TerminalOutput output = terminal.output();
        const std::string text = stripANSI(UsageView(output, words).text({agent(), failedAgent()}));
        for (const std::string_view line : nonEmptyLines(text))
            EXPECT_LE(displayWidth(line), columns) << line;
        EXPECT_THAT(text, HasSubstr("62% left")) << columns;
        EXPECT_THAT(text, HasSubstr("5% left")) << columns;
        EXPECT_THAT(text, HasSubstr("doubtful")) << columns;
    }
}

TEST(UsageView, ABarShowsWhatIsLeftAndTheEvenPace) {
    const Localization words("en");
    AgentBlockContent shown = agent();
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
} // namespace vellmark
