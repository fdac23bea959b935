#include "probes/ProviderRegistry.h"
#include "ui/Conversions.h"
#include "ui/kit/Theme.h"

#include <QApplication>
#include <QPalette>
#include <gtest/gtest.h>

#include <span>

namespace vellmark::kit {
namespace {

constexpr double readable = 4.5;
constexpr double seen = 3.0;
/// Two grounds that touch.
constexpr double toldApart = 1.14;

using Role = ColorRole;
using Roles = std::vector<Role>;

/// Grounds on which any text may stand.
const Roles grounds{Role::window, Role::sidebar,       Role::popover,      Role::card,
                    Role::inset,  Role::fill,          Role::hover,        Role::select,
                    Role::track,  Role::attentionWash, Role::criticalWash, Role::neutralWash};
const Roles controlGrounds{Role::fillHover, Role::fillPressed};

const Theme* const themes[] = {&Theme::light(), &Theme::dark()};

const Theme* const highContrastThemes[] = {
    &Theme::of(Theme::Appearance::light, Theme::Contrast::high),
    &Theme::of(Theme::Appearance::dark, Theme::Contrast::high)};

void expectContrast(const Roles& marks, const Roles& on, double least,
                    std::span<const Theme* const> among = themes) {
    for (const Theme* theme : among) {
        for (const Role mark : marks) {
            for (const Role ground : on) {
                EXPECT_GE(contrastRatio(theme->color(mark), theme->color(ground)), least)
                    << (theme->isDark() ? "dark" : "light") << ", role " << static_cast<int>(mark)
                    << " on " << static_cast<int>(ground);
            }
        }
    }
}

TEST(ThemeContrast, TextCanBeReadWhereverItMayStand) {
    expectContrast({Role::ink, Role::ink2, Role::ink3}, grounds, readable);
    expectContrast({Role::ink, Role::ink2}, controlGrounds, readable);
    expectContrast({Role::ink}, {Role::segmentOn}, readable);
    // Forecasts also when their row is pointed at and pressed.
    expectContrast({Role::attentionText, Role::criticalText},
                   {Role::popover, Role::card, Role::window, Role::hover, Role::select}, readable);
}

TEST(ThemeContrast, MarksCanBeSeenOnTrackAndGround) {
    expectContrast({Role::healthy, Role::attention, Role::critical},
                   {Role::track, Role::popover, Role::card, Role::window}, seen);
    expectContrast({Role::attention}, {Role::attentionWash}, seen);
    expectContrast({Role::critical}, {Role::criticalWash}, seen);
    expectContrast({Role::refreshing, Role::none, Role::focus},
                   {Role::popover, Role::card, Role::window}, seen);
}

TEST(ThemeContrast, TracksAndBonesCanBeToldFromTheirGroundAlsoWhenItIsPointedAtAndPressed) {
    expectContrast({Role::track}, {Role::popover, Role::card, Role::window}, toldApart);
    expectContrast({Role::trackOnHover}, {Role::hover, Role::select}, toldApart);
    // The figures beside the bar stay; its fill only has to be clearly another.
    expectContrast({Role::healthy, Role::attention, Role::critical}, {Role::trackOnHover}, 2.4);
}

TEST(ThemeContrast, WordsOnPrimaryButtonsAndLettersOnLogosCanBeRead) {
    expectContrast({Role::onPrimary}, {Role::primary, Role::primaryHover, Role::primaryPressed},
                   readable);
    for (const ProviderRegistration& registration : providerRegistry()) {
        const ProviderDescriptor& agent = registration.descriptor;
        for (const Theme* theme : themes) {
            const QColor accent = qColor(theme->isDark() ? agent.accentDark : agent.accentLight);
            EXPECT_GE(contrastRatio(theme->color(Role::onAccent), accent), readable)
                << agent.id.rawValue;
        }
    }
}

TEST(ThemeContrast, IsHigherWhereTheSystemIsAskedForIt) {
    const auto expectHigh = [](const Roles& marks, const Roles& on, double least) {
        expectContrast(marks, on, least, highContrastThemes);
    };
    const Roles plain{Role::window, Role::sidebar, Role::popover, Role::card};
    expectHigh({Role::ink, Role::ink2, Role::ink3}, grounds, 7);
    expectHigh({Role::ink, Role::ink2}, controlGrounds, 7);
    expectHigh({Role::attentionText, Role::criticalText},
               {Role::popover, Role::card, Role::window, Role::hover}, 7);
    expectHigh({Role::healthy, Role::attention, Role::critical},
               {Role::track, Role::popover, Role::card, Role::window, Role::attentionWash}, 4.5);
    expectHigh({Role::refreshing, Role::none, Role::focus}, plain, 4.5);
    expectHigh({Role::line, Role::lineStrong, Role::segmentOnLine, Role::edge}, plain, 7);
}

TEST(Theme, ContrastIsThatOfTheGuidelines) {
    EXPECT_NEAR(contrastRatio(Qt::white, Qt::black), 21, 0.001);
    EXPECT_NEAR(contrastRatio(QColor(0x77, 0x77, 0x77), Qt::white), 4.48, 0.01);
}

TEST(Theme, TakesTheSystemsHighlightForTheFocusWhereItCanBeSeen) {
    const QColor violet(0x8A, 0x2B, 0xE2);
    Theme::setCurrent(Theme::Appearance::light, violet);
    EXPECT_EQ(color(Role::focus), violet);
    // A pale highlight would not show around a white field.
    Theme::setCurrent(Theme::Appearance::light, QColor(0xF0, 0xE0, 0xA0));
    EXPECT_EQ(color(Role::focus), Theme::light().color(Role::focus));
    Theme::setCurrent(Theme::Appearance::dark, std::nullopt);
    EXPECT_EQ(color(Role::focus), Theme::dark().color(Role::focus));
    Theme::setCurrent(Theme::Appearance::light, std::nullopt);
}

TEST(Theme, ItsPaletteTellsWhatIsDisabledAndDoesNotMakeTheSystemDark) {
    const bool before = Theme::isSystemDark();
    for (const auto appearance : {Theme::Appearance::dark, Theme::Appearance::light}) {
        Theme::setCurrent(appearance, std::nullopt);
        EXPECT_EQ(Theme::isSystemDark(), before);
        const QPalette menu = QApplication::palette();
        EXPECT_EQ(menu.color(QPalette::Window), color(Role::window));
        EXPECT_LT(contrastRatio(menu.color(QPalette::Disabled, QPalette::Text),
                                menu.color(QPalette::Disabled, QPalette::Base)),
                  contrastRatio(menu.color(QPalette::Active, QPalette::Text),
                                menu.color(QPalette::Active, QPalette::Base)) /
                      3);
    }
}

TEST(Theme, FadesFromNothingWithoutPassingThroughBlack) {
    const QColor half = mixed(Qt::transparent, QColor(200, 100, 50), 0.5);
    EXPECT_EQ(half.rgb(), QColor(200, 100, 50).rgb());
    EXPECT_NEAR(half.alphaF(), 0.5, 0.01);
}

} // namespace
} // namespace vellmark::kit
