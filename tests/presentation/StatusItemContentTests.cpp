#include "presentation/StatusItemContent.h"
#include "presentation/UsageStateMaker.h"

#include <gtest/gtest.h>

namespace vellmark::tests {
namespace {

const auto codex = AgentProviderID::codex();
const auto claude = AgentProviderID::claude();
const Localization english("en", "en_US", "UTC");
const Localization german("de", "de_DE", "UTC");

TEST(StatusItemContent, ColoursTheDot) {
    const UsageWindow fine = window("session", 10, 300, 150);
    const UsageWindow critical = window("session", 97, 300, 150);
    const auto timeout = UsageProviderError::timeout("Codex");

    EXPECT_EQ(statusItemColor(UsageState(), noon), StatusColorRole::none);

    UsageState first = stateOf({live(codex, {fine})});
    first.lastRefreshCompletedAt.reset();
    EXPECT_EQ(statusItemColor(first, noon), StatusColorRole::none);
    first.isRefreshing = true;
    EXPECT_EQ(statusItemColor(first, noon), StatusColorRole::refreshing);

    UsageState known = stateOf({live(codex, {fine}), live(claude, {critical})});
    EXPECT_EQ(statusItemColor(known, noon), StatusColorRole::critical);
    known.isRefreshing = true;
    EXPECT_EQ(statusItemColor(known, noon), StatusColorRole::refreshing);

    // An agent that cannot be read hides a healthy one, but no pressing one.
    EXPECT_EQ(statusItemColor(stateOf({live(codex, {fine}), failed(claude, timeout)}), noon),
              StatusColorRole::none);
    EXPECT_EQ(statusItemColor(stateOf({live(codex, {critical}), failed(claude, timeout)}), noon),
              StatusColorRole::critical);
    EXPECT_EQ(statusItemColor(stateOf({live(codex, {fine})}), noon), StatusColorRole::healthy);
}

TEST(StatusItemContent, SaysWhichWindowTheGlyphMeans) {
    const auto toolTip = [](const UsageState& state, const Localization& words) {
        return statusItemContent(state, noon, words).toolTip;
    };
    const UsageState timed = stateOf({live(claude, {window("session", 93, 300, 87)})});
    EXPECT_EQ(toolTip(timed, english),
              "Vellmark: Claude Code, Session, 93% used, 71% of the time elapsed");
    EXPECT_EQ(toolTip(timed, german),
              "Vellmark: Claude Code, Sitzung, 93\u00a0% verbraucht, 71\u00a0% der Zeit vergangen");
    // By the name that the list of windows has for it.
    const UsageState pool = stateOf(
        {live(AgentProviderID::antigravity(), {window("pool:Gemini Models|5h", 93, 300, 87)})});
    EXPECT_EQ(toolTip(pool, english),
              "Vellmark: Antigravity, Gemini · 5 hours, 93% used, 71% of the time elapsed");
    const UsageState timeless = stateOf({live(claude, {windowWithoutReset("weekly", 64)})});
    EXPECT_EQ(toolTip(timeless, english), "Vellmark: Claude Code, Week, 64% used");
}

TEST(StatusItemContent, SummarizesWithoutAWindow) {
    const auto toolTip = [](const UsageState& state) {
        return statusItemContent(state, noon, english).toolTip;
    };
    EXPECT_EQ(toolTip(UsageState()), "Vellmark: No agent enabled");
    const auto missing = UsageProviderError::executableMissing("codex");
    UsageState state = stateOf({failed(codex, missing), failed(claude, missing)});
    EXPECT_EQ(toolTip(state), "Vellmark: Unavailable: Codex, Claude");
    state.isRefreshing = true;
    EXPECT_EQ(toolTip(state), "Vellmark: Reading values …");
}

TEST(StatusItemContent, LeavesNoMenuBarBehindInTheOtherAppearance) {
    for (const StatusColorRole role :
         {StatusColorRole::none, StatusColorRole::refreshing, StatusColorRole::healthy,
          StatusColorRole::attention, StatusColorRole::critical})
        EXPECT_NE(statusColor(role, true), statusColor(role, false));
    EXPECT_EQ(statusColor(StatusColorRole::attention, true),
              (ColorComponents{0.98, 0.70, 0.20, 1}));
    EXPECT_EQ(statusColor(StatusColorRole::critical, false),
              (ColorComponents{0.80, 0.14, 0.18, 1}));
}

} // namespace
} // namespace vellmark::tests
