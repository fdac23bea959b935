#pragma once

/// Measures that several places share, in points, and times, in milliseconds.
namespace vellmark::kit {

namespace radius {
inline constexpr double check = 4;
inline constexpr double control = 6;
inline constexpr double notice = 8;
inline constexpr double card = 10;
inline constexpr double popover = 12;
/// Of a logo tile, as a share of its side.
inline constexpr double logoShare = 0.28;
} // namespace radius

namespace duration {
inline constexpr int hoverIn = 80;
inline constexpr int hoverOut = 120;
inline constexpr int valueChange = 240;
inline constexpr int refreshTurn = 1000;
} // namespace duration

/// Between a control and the ring around it, and the ring's own width.
inline constexpr int focusGap = 2;
inline constexpr int focusWidth = 2;

inline constexpr double disabledOpacity = 0.4;
inline constexpr double staleOpacity = 0.45;

} // namespace vellmark::kit
