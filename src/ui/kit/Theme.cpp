#include "ui/kit/Theme.h"

#include "ui/kit/Metrics.h"

#include <QApplication>
#include <QPalette>
#include <QStyle>
#include <QStyleFactory>
#include <QWidget>

#include <algorithm>
#include <cmath>
#include <memory>
#include <span>

namespace vellmark::kit {

namespace {

struct RoleColors {
    ColorRole role;
    QRgb light;
    QRgb dark;
};

constexpr QRgb opaque(QRgb rgb) {
    return 0xFF000000U | rgb;
}

constexpr RoleColors roleColors[] = {
    {ColorRole::window, opaque(0xF7F7F8), opaque(0x1B1C1F)},
    {ColorRole::sidebar, opaque(0xEEEFF1), opaque(0x232428)},
    {ColorRole::popover, opaque(0xFCFCFD), opaque(0x1F2024)},
    {ColorRole::card, opaque(0xFFFFFF), opaque(0x26272B)},
    {ColorRole::inset, opaque(0xF4F4F6), opaque(0x1D1E21)},
    {ColorRole::line, opaque(0xE2E3E7), opaque(0x34363B)},
    {ColorRole::lineStrong, opaque(0xC9CBD1), opaque(0x4A4C53)},
    {ColorRole::ink, opaque(0x1A1B1E), opaque(0xF3F3F5)},
    {ColorRole::ink2, opaque(0x50525A), opaque(0xB9BBC2)},
    {ColorRole::ink3, opaque(0x5E6069), opaque(0xA5A7AF)},
    {ColorRole::fill, opaque(0xECEDF0), opaque(0x33353A)},
    {ColorRole::fillHover, opaque(0xE3E4E8), opaque(0x3D3F45)},
    {ColorRole::fillPressed, opaque(0xD7D9DE), opaque(0x474950)},
    {ColorRole::hover, opaque(0xE7E8EC), opaque(0x2C2E33)},
    {ColorRole::select, opaque(0xDFE0E5), opaque(0x3A3C42)},
    {ColorRole::track, opaque(0xE7E8EB), opaque(0x33353A)},
    {ColorRole::trackOnHover, opaque(0xD0D2D8), opaque(0x43454B)},
    {ColorRole::primary, opaque(0x1F2024), opaque(0xEDEDF0)},
    {ColorRole::primaryHover, opaque(0x3A3B42), opaque(0xFFFFFF)},
    {ColorRole::primaryPressed, opaque(0x000000), opaque(0xCBCCD2)},
    {ColorRole::onPrimary, opaque(0xFFFFFF), opaque(0x1A1B1E)},
    {ColorRole::focus, opaque(0x2F7BF6), opaque(0x5B9BFF)},
    {ColorRole::healthy, opaque(0x0F8540), opaque(0x26D173)},
    {ColorRole::attention, opaque(0xB87500), opaque(0xFAB333)},
    {ColorRole::critical, opaque(0xCC242E), opaque(0xED4047)},
    {ColorRole::attentionText, opaque(0x845300), opaque(0xFAB333)},
    {ColorRole::criticalText, opaque(0xB81D27), opaque(0xFF8084)},
    {ColorRole::refreshing, opaque(0x007AFF), opaque(0x0A84FF)},
    {ColorRole::none, opaque(0x6E7078), opaque(0x9C9EA6)},
    {ColorRole::attentionWash, opaque(0xFBF4E6), opaque(0x35301F)},
    {ColorRole::criticalWash, opaque(0xFCEEEF), opaque(0x3A2528)},
    {ColorRole::neutralWash, opaque(0xEFF0F2), opaque(0x2E3035)},
    {ColorRole::onAccent, opaque(0xFFFFFF), opaque(0x141518)},
    {ColorRole::segmentOn, opaque(0xFFFFFF), opaque(0x4A4C53)},
    {ColorRole::segmentOnLine, opaque(0xE2E3E7), opaque(0x4A4C53)},
    {ColorRole::edge, 0x1A000000, 0x1FFFFFFF},
};
static_assert(std::size(roleColors) == colorRoleCount);

/// What high contrast changes.
constexpr RoleColors highContrastColors[] = {
    {ColorRole::line, opaque(0x33353B), opaque(0xE9EAED)},
    {ColorRole::lineStrong, opaque(0x33353B), opaque(0xE9EAED)},
    {ColorRole::ink, opaque(0x000000), opaque(0xFFFFFF)},
    {ColorRole::ink2, opaque(0x33353B), opaque(0xE9EAED)},
    {ColorRole::ink3, opaque(0x393B42), opaque(0xE4E5E9)},
    {ColorRole::focus, opaque(0x0B57D0), opaque(0x8AB8FF)},
    {ColorRole::healthy, opaque(0x0A6B32), opaque(0x26D173)},
    {ColorRole::attention, opaque(0x8A5600), opaque(0xFAB333)},
    {ColorRole::critical, opaque(0xB01A24), opaque(0xFF7479)},
    {ColorRole::attentionText, opaque(0x5A3800), opaque(0xFFCB66)},
    {ColorRole::criticalText, opaque(0x860E17), opaque(0xFFC2C4)},
    {ColorRole::refreshing, opaque(0x0058C7), opaque(0x4DA3FF)},
    {ColorRole::none, opaque(0x5A5C64), opaque(0xB4B6BD)},
    {ColorRole::segmentOnLine, opaque(0x33353B), opaque(0xE9EAED)},
    {ColorRole::edge, opaque(0x33353B), opaque(0xE9EAED)},
};

using Colors = std::array<QColor, colorRoleCount>;

Colors colorsOf(Theme::Appearance appearance, Theme::Contrast contrast) {
    Colors colors;
    const auto use = [&](std::span<const RoleColors> entries) {
        for (const RoleColors& entry : entries) {
            const QRgb rgb = appearance == Theme::Appearance::dark ? entry.dark : entry.light;
            colors[static_cast<std::size_t>(entry.role)] = QColor::fromRgba(rgb);
        }
    };
    use(roleColors);
    if (contrast == Theme::Contrast::high) {
        use(highContrastColors);
    }
    return colors;
}

double linear(double component) {
    return component <= 0.04045 ? component / 12.92 : std::pow((component + 0.055) / 1.055, 2.4);
}

double luminance(const QColor& color) {
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

/// What Qt draws itself: text selection, menus.
QPalette paletteOf(const Theme& theme) {
    // Roles that are not named here stay the system's.
    QPalette palette;
    palette.setColor(QPalette::Window, theme.color(ColorRole::window));
    palette.setColor(QPalette::WindowText, theme.color(ColorRole::ink));
    palette.setColor(QPalette::Base, theme.color(ColorRole::card));
    palette.setColor(QPalette::Text, theme.color(ColorRole::ink));
    palette.setColor(QPalette::PlaceholderText, theme.color(ColorRole::ink3));
    palette.setColor(QPalette::Button, theme.color(ColorRole::fill));
    palette.setColor(QPalette::ButtonText, theme.color(ColorRole::ink));
    const QColor disabled =
        mixed(theme.color(ColorRole::card), theme.color(ColorRole::ink), disabledOpacity);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, disabled);
    }
    // Some styles etch disabled words: drawn once more in this colour, beside themselves.
    palette.setColor(QPalette::Disabled, QPalette::Light, theme.color(ColorRole::card));
    return palette;
}

} // namespace

Theme::Theme(Appearance appearance, std::array<QColor, colorRoleCount> colors)
    : appearance_(appearance), colors_(std::move(colors)) {}

const Theme& Theme::of(Appearance appearance, Contrast contrast) {
    static const std::array themes = [] {
        using enum Appearance;
        using enum Contrast;
        return std::array{Theme(light, colorsOf(light, usual)), Theme(dark, colorsOf(dark, usual)),
                          Theme(light, colorsOf(light, high)), Theme(dark, colorsOf(dark, high))};
    }();
    const std::size_t index =
        (appearance == Appearance::dark ? 1U : 0U) + (contrast == Contrast::high ? 2U : 0U);
    return themes[index];
}

Theme& Theme::mutableCurrent() {
    static Theme theme = light();
    return theme;
}

const Theme& Theme::current() {
    return mutableCurrent();
}

void Theme::setCurrent(Appearance appearance, std::optional<QColor> highlight, Contrast contrast) {
    Theme& theme = mutableCurrent();
    theme = of(appearance, contrast);
    theme.useHighlight(highlight);
    const QPalette palette = paletteOf(theme);
    QApplication::setPalette(palette);
    for (QWidget* widget : QApplication::allWidgets()) {
        widget->update();
    }
}

bool Theme::isSystemDark() {
    // An empty palette stands for the system's.
    QApplication::setPalette(QPalette());
    const bool isDark = QApplication::palette().color(QPalette::Window).lightnessF() < 0.5F;
    QApplication::setPalette(paletteOf(current()));
    return isDark;
}

std::optional<QColor> Theme::systemHighlight() {
    static const QColor defaultHighlight = [] {
        const std::unique_ptr<QStyle> fusion(QStyleFactory::create(QStringLiteral("fusion")));
        return fusion ? fusion->standardPalette().color(QPalette::Highlight) : QColor();
    }();
    const QColor highlight = QApplication::palette().color(QPalette::Active, QPalette::Highlight);
    if (highlight == defaultHighlight) {
        return std::nullopt;
    }
    return highlight;
}

void Theme::useHighlight(const std::optional<QColor>& highlight) {
    constexpr double seen = 3.0;
    if (!highlight || highlight->alpha() < 255) {
        return;
    }
    for (const ColorRole ground : {ColorRole::window, ColorRole::popover, ColorRole::card}) {
        if (contrastRatio(*highlight, color(ground)) < seen) {
            return;
        }
    }
    colors_[static_cast<std::size_t>(ColorRole::focus)] = *highlight;
}

std::array<ShadowLayer, 2> Theme::popoverShadow() const {
    if (isDark()) {
        return {ShadowLayer{12, 36, QColor(0, 0, 0, 128)}, ShadowLayer{2, 8, QColor(0, 0, 0, 77)}};
    }
    return {ShadowLayer{10, 32, QColor(20, 24, 32, 51)}, ShadowLayer{2, 6, QColor(20, 24, 32, 20)}};
}

QColor color(ColorRole role) {
    return Theme::current().color(role);
}

QColor mixed(const QColor& from, const QColor& to, double share) {
    if (share <= 0) {
        return from;
    }
    if (share >= 1) {
        return to;
    }
    const QColor start = from.alpha() == 0 ? QColor(to.red(), to.green(), to.blue(), 0) : from;
    const QColor end = to.alpha() == 0 ? QColor(from.red(), from.green(), from.blue(), 0) : to;
    const auto between = [share](float first, float second) {
        return first + (second - first) * static_cast<float>(share);
    };
    return QColor::fromRgbF(
        between(start.redF(), end.redF()), between(start.greenF(), end.greenF()),
        between(start.blueF(), end.blueF()), between(start.alphaF(), end.alphaF()));
}

double contrastRatio(const QColor& first, const QColor& second) {
    const double one = luminance(first);
    const double other = luminance(second);
    return (std::max(one, other) + 0.05) / (std::min(one, other) + 0.05);
}

} // namespace vellmark::kit
