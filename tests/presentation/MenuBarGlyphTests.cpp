#include "AgentNames.h"
#include "presentation/MenuBarGlyph.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace vellmark::tests {
namespace {

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

} // namespace
} // namespace vellmark::tests
