#pragma once

#include <QColor>

#include <array>
#include <optional>

namespace vellmark::kit {

/// What a colour is for. The values of each role in light and dark stand in Theme.cpp.
enum class ColorRole {
    window,
    sidebar,
    popover,
    card,
    inset,
    line,
    lineStrong,
    ink,
    ink2, ///< secondary text
    ink3, ///< axes, placeholders, section titles; never on fillHover or fillPressed
    fill,
    fillHover,
    fillPressed,
    hover,
    select,
    track,
    trackOnHover, ///< the track on a ground that is pointed at or pressed
    primary,
    primaryHover,
    primaryPressed,
    onPrimary,
    focus,
    healthy,
    attention,
    critical,
    attentionText,
    criticalText,
    refreshing,
    none,
    attentionWash,
    criticalWash,
    neutralWash,
    onAccent,
    segmentOn,     ///< the chosen part of a segmented control
    segmentOnLine, ///< the line around it
    edge,          ///< the outline of windows that float, over whatever lies below
};
inline constexpr std::size_t colorRoleCount = static_cast<std::size_t>(ColorRole::edge) + 1;

/// One layer of a soft shadow, in points.
struct ShadowLayer {
    double offset = 0;
    double blur = 0;
    QColor color;
};

/// The colours of one appearance. Everything that paints asks the current theme while it paints,
/// so a change of appearance is one repaint. Main thread only.
class Theme {
public:
    enum class Appearance { light, dark };
    /// `high` is for those who ask the system for it: text at 7:1, marks at 4.5:1, every line in
    /// the secondary ink.
    enum class Contrast { usual, high };

    static const Theme& of(Appearance appearance, Contrast contrast);
    static const Theme& light() { return of(Appearance::light, Contrast::usual); }
    static const Theme& dark() { return of(Appearance::dark, Contrast::usual); }

    static const Theme& current();
    /// Makes an appearance current and repaints every widget. `highlight` is the system's own
    /// highlight colour, if it names one; it marks the focus when it can be seen on this theme's
    /// grounds.
    static void setCurrent(Appearance appearance,
                           std::optional<QColor> highlight = systemHighlight(),
                           Contrast contrast = Contrast::usual);

    /// Whether the system's own colours are dark, whatever theme is current.
    static bool isSystemDark();
    /// The highlight colour that the desktop names; nothing where there is only Qt's own default.
    static std::optional<QColor> systemHighlight();

    Appearance appearance() const { return appearance_; }
    bool isDark() const { return appearance_ == Appearance::dark; }
    QColor color(ColorRole role) const { return colors_[static_cast<std::size_t>(role)]; }
    /// The shadow of the popover, widest layer first.
    std::array<ShadowLayer, 2> popoverShadow() const;

private:
    Theme(Appearance appearance, std::array<QColor, colorRoleCount> colors);
    void useHighlight(const std::optional<QColor>& highlight);

    static Theme& mutableCurrent();

    Appearance appearance_;
    std::array<QColor, colorRoleCount> colors_;
};

/// The colour of a role in the current theme.
QColor color(ColorRole role);

/// `from` at 0, `to` at 1, every component in between; a colour without ground counts as `to`
/// with no opacity, so that fades do not pass through black.
QColor mixed(const QColor& from, const QColor& to, double share);

/// The contrast of two opaque colours, 1 to 21, as accessibility guidelines define it.
double contrastRatio(const QColor& first, const QColor& second);

} // namespace vellmark::kit
