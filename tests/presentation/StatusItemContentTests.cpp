#include "AgentNames.h"
#include "presentation/StatusItemContent.h"

#include <gtest/gtest.h>

namespace vellmark::tests {
namespace {

std::string toolTip(const UsageState& state) {
    return statusItemContent(state, noon, english).toolTip;
}

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
    // By the name that the list of windows has for it.
    const UsageState pool = stateOf(
        {live(AgentProviderID::antigravity(), {window("pool:Gemini Models|5h", 93, 300, 87)})});
    EXPECT_EQ(toolTip(pool),
              "Vellmark: Antigravity, Gemini · 5 hours, 93% used, 71% of the time elapsed");
    const UsageState timeless = stateOf({live(claude, {windowWithoutReset("weekly", 64)})});
    EXPECT_EQ(toolTip(timeless), "Vellmark: Claude Code, Week, 64% used");
}

TEST(StatusItemContent, SummarizesWithoutAWindow) {
    EXPECT_EQ(toolTip(UsageState()), "Vellmark: No agent enabled");
    const auto missing = UsageProviderError::executableMissing("codex");
    UsageState state = stateOf({failed(codex, missing), failed(claude, missing)});
    EXPECT_EQ(toolTip(state), "Vellmark: Unavailable: Codex, Claude");
    state.isRefreshing = true;
    EXPECT_EQ(toolTip(state), "Vellmark: Reading values …");
}

} // namespace
} // namespace vellmark::tests
