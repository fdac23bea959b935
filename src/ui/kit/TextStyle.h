#pragma once

#include <QFont>

namespace vellmark::kit {

/// A step of the type scale: size and line height in points, in the system's own font.
struct TextStyle {
    double size = 13;
    int lineHeight = 16;
    QFont::Weight weight = QFont::Normal;
    bool monospaced = false;
    bool operator==(const TextStyle&) const = default;
};

namespace style {
inline constexpr TextStyle figureLarge{28, 32, QFont::DemiBold};
inline constexpr TextStyle figure{24, 28, QFont::DemiBold};
inline constexpr TextStyle figureSmall{20, 24, QFont::DemiBold};
inline constexpr TextStyle title{22, 28, QFont::Bold};
inline constexpr TextStyle popoverName{19, 24, QFont::Bold};
inline constexpr TextStyle heading{15, 20, QFont::DemiBold};
inline constexpr TextStyle body{13, 16, QFont::Normal};
inline constexpr TextStyle prose{13, 20, QFont::Normal}; ///< to read at length
inline constexpr TextStyle bodyMedium{13, 16, QFont::Medium};
inline constexpr TextStyle strong{13, 16, QFont::DemiBold};
inline constexpr TextStyle text{12, 16, QFont::Normal};
inline constexpr TextStyle row{12, 16, QFont::Medium};
inline constexpr TextStyle value{12, 16, QFont::DemiBold};
inline constexpr TextStyle small{11, 14, QFont::Normal};
inline constexpr TextStyle smallMedium{11, 14, QFont::Medium};
inline constexpr TextStyle smallStrong{11, 14, QFont::DemiBold};
inline constexpr TextStyle popoverStatus{10.5, 14, QFont::Medium};
inline constexpr TextStyle axis{10, 12, QFont::Normal};
inline constexpr TextStyle mono{11.5, 18, QFont::Normal, true};
} // namespace style

/// The font of a style: the application's family, which is the system's own. Fonts have whole
/// pixels only, so a style of a fractional size needs a font `enlargement` times as large, drawn
/// that much smaller.
QFont font(const TextStyle& style, int enlargement = 1);

} // namespace vellmark::kit
