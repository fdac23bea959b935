#include "AgentNames.h"
#include "presentation/GlyphDrawing.h"
#include "presentation/MenuBarGlyph.h"
#include "presentation/StatusItemContent.h"

#include <gtest/gtest.h>

#include <cmath>

namespace vellmark::tests {
namespace {

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

TEST(StatusItemContent, SaysWhichWindowTheGlyphMeansOrWhyThereIsNone) {
    const auto missing = UsageProviderError::executableMissing("codex");
    const UsageState unread = stateOf({failed(codex, missing), failed(claude, missing)});
    UsageState reading = unread;
    reading.isRefreshing = true;
    const std::pair<UsageState, const char*> cases[] = {
        // By the name that the list of windows has for it.
        {stateOf({live(antigravity, {window("pool:Gemini Models|5h", 93, 300, 87)})}),
         "Vellmark: Antigravity, Gemini · 5 hours, 93% used, 71% of the time elapsed"},
        {stateOf({live(claude, {windowWithoutReset("weekly", 64)})}),
         "Vellmark: Claude Code, Week, 64% used"},
        {UsageState(), "Vellmark: No agent enabled"},
        {unread, "Vellmark: Unavailable: Codex, Claude"},
        {reading, "Vellmark: Reading values …"},
    };
    for (const auto& [state, toolTip] : cases) {
        EXPECT_EQ(statusItemContent(state, noon, english).toolTip, toolTip);
    }
}

MenuBarGlyph glyphOf(const std::vector<AgentUsageSnapshot>& snapshots,
                     const std::set<AgentProviderID>& enabled = {codex, claude}) {
    return MenuBarGlyph::compute(snapshots, enabled, noon);
}

/// Window, used and elapsed percentage: "session 100/60".
std::string described(const MenuBarGlyph& glyph) {
    std::string text = glyph.windowID.value_or("none") + " " +
                       std::to_string(std::lround(glyph.usedPercent.value_or(-1)));
    return glyph.elapsedPercent ? text + "/" + std::to_string(std::lround(*glyph.elapsedPercent))
                                : text;
}

TEST(MenuBarGlyph, ChoosesTheMostPressingWindow) {
    const std::tuple<const char*, std::vector<UsageWindow>, const char*> choices[] = {
        {"severity comes before pace",
         {window("fast", 56, fiveHours, 150), window("critical", 96, week, 0.9 * week)},
         "critical 96/10"},
        {"of equal severity the higher pace wins",
         {window("slow", 96, fiveHours, 30), window("fast", 96, fiveHours, 150)},
         "fast 96/50"},
        {"a window with a pace beats one without, also when that is met first",
         {window("young", 99, fiveHours, 297), window("old", 98, fiveHours, 150)},
         "old 98/50"},
        {"equal paces (40 / 0.4 and 60 / 0.6): what is left decides",
         {window("more left", 40, fiveHours, 180), window("less left", 60, fiveHours, 120)},
         "less left 60/60"},
        {"equal in everything: the earlier stays",
         {window("first", 40, fiveHours, 180), window("second", 40, fiveHours, 180)},
         "first 40/40"},
        {"without reset times what is left decides, and no time is shown",
         {windowWithoutReset("a", 20), windowWithoutReset("b", 25)},
         "b 25"},
        {"used counts as pace only when something is used",
         {window("untouched", 0, fiveHours, 150), windowWithoutReset("some", 10)},
         "some 10"},
        {"a reset in the past: all of its time has passed",
         {window("past", 90, fiveHours, -5)},
         "past 90/100"},
        {"a reset too far away: none of the time has passed",
         {window("future", 2, fiveHours, 400)},
         "future 2/0"},
        {"shares are clamped", {window("over", 130, fiveHours, 150)}, "over 100/50"},
    };
    for (const auto& [promise, windows, chosen] : choices) {
        EXPECT_EQ(described(glyphOf({live(codex, windows)})), chosen) << promise;
    }
}

TEST(MenuBarGlyph, WalksTheEnabledAgentsOnly) {
    const AgentUsageSnapshot urgent = live(codex, {window("session", 100, fiveHours, 120)});
    const AgentUsageSnapshot calm = live(claude, {window("session", 10, fiveHours, 120)});
    EXPECT_EQ(glyphOf({calm, urgent}).providerID, codex);
    EXPECT_EQ(glyphOf({calm, urgent}, {claude}).providerID, claude);
    EXPECT_EQ(glyphOf({calm, urgent}, {}), MenuBarGlyph());
    EXPECT_EQ(glyphOf({}), MenuBarGlyph());
    // Nothing is known about an agent that no registry entry describes.
    const AgentProviderID unknown("unknown");
    EXPECT_EQ(glyphOf({live(unknown, {window("session", 10, fiveHours, 120)})}, {unknown}),
              MenuBarGlyph());
}

TEST(MenuBarGlyph, IsRedrawnWhenAShareMovesByAPoint) {
    const auto glyph = [](std::optional<double> used, std::optional<double> elapsed) {
        return MenuBarGlyph{.usedPercent = used, .elapsedPercent = elapsed};
    };
    EXPECT_TRUE(needsRedraw(std::nullopt, glyph({}, {})));
    EXPECT_FALSE(needsRedraw(glyph({}, {}), glyph({}, {})));
    EXPECT_FALSE(needsRedraw(glyph(41.2, 50), glyph(41.9, 50.9)));
    EXPECT_TRUE(needsRedraw(glyph(41.2, 50), glyph(42.3, 50)));
    EXPECT_TRUE(needsRedraw(glyph(41.2, 50), glyph(41.2, 51)));
    EXPECT_TRUE(needsRedraw(glyph(41.2, 50), glyph(41.2, {})));
    EXPECT_TRUE(needsRedraw(glyph({}, {}), glyph(0, {})));
    // Another window with the same shares looks the same.
    MenuBarGlyph other = glyph(41.2, 50);
    other.providerID = claude;
    other.windowID = "weekly";
    EXPECT_FALSE(needsRedraw(glyph(41.2, 50), other));
}

/// Such as "faint ring, arc to 0": an arc and a pie begin at the top, 90.
std::string described(const std::vector<GlyphMark>& marks) {
    const char* const kinds[] = {"ring", "arc to ", "disc", "pie to "};
    std::string text;
    for (const GlyphMark& mark : marks) {
        text += (text.empty() ? "" : ", ") + std::string(mark.alpha < 1 ? "faint " : "") +
                kinds[static_cast<int>(mark.kind)];
        if (mark.kind == GlyphMark::Kind::strokedArc || mark.kind == GlyphMark::Kind::filledPie) {
            EXPECT_EQ(mark.startAngle, 90);
            text += std::to_string(std::lround(mark.endAngle));
        }
    }
    return text;
}

TEST(GlyphDrawing, ShowsThePassedTimeAroundTheUsedShare) {
    const std::tuple<std::optional<double>, std::optional<double>, const char*> cases[] = {
        {{}, {}, "faint ring, faint disc"},
        {2.5, 0, "faint ring, faint disc"},
        {3.0, 25, "faint ring, arc to 0, faint disc, pie to 79"},
        {50, {}, "faint ring, faint disc, pie to -90"},
        {99.95, 99.9, "faint ring, ring, faint disc, disc"},
    };
    for (const auto& [used, elapsed, marks] : cases) {
        const MenuBarGlyph glyph{.usedPercent = used, .elapsedPercent = elapsed};
        EXPECT_EQ(described(glyphDrawing(glyph, 18)), marks);
    }
}

TEST(GlyphDrawing, ScalesWithTheSide) {
    const MenuBarGlyph glyph{.usedPercent = 40, .elapsedPercent = 40};
    for (const GlyphMark& mark : glyphDrawing(glyph, 44)) {
        EXPECT_DOUBLE_EQ(mark.centerX, 22);
        EXPECT_DOUBLE_EQ(mark.centerY, 22);
        const bool isRing = mark.lineWidth > 0;
        EXPECT_NEAR(mark.radius, (isRing ? 8 : 6) * 44.0 / 18, 1e-9);
        EXPECT_LE(mark.radius + mark.lineWidth / 2, 22);
    }
}

TEST(GlyphDrawing, KeepsTheDotInsideTheIcon) {
    for (const double side : {16.0, 22.0, 24.0, 64.0}) {
        const TrayIconLayout layout = trayIconLayout(side);
        EXPECT_GT(layout.dotRadius, side / 10) << side;
        EXPECT_GE(layout.erasedRadius - layout.dotRadius, 1) << side;
        EXPECT_LE(layout.dotCenterX + layout.dotRadius, side) << side;
        EXPECT_GE(layout.dotCenterY - layout.dotRadius, 0) << side;
    }
}

} // namespace
} // namespace vellmark::tests
