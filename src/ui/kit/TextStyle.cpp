#include "ui/kit/TextStyle.h"

#include <QFontDatabase>
#include <QGuiApplication>

#include <cmath>

namespace vellmark::kit {

namespace {
constexpr double tightFrom = 19;
constexpr double tightSpacing = -0.3;
} // namespace

QFont font(const TextStyle& style, int enlargement) {
    QFont result = style.monospaced ? QFontDatabase::systemFont(QFontDatabase::FixedFont)
                                    : QGuiApplication::font();
    result.setPixelSize(static_cast<int>(std::lround(style.size * enlargement)));
    result.setWeight(style.weight);
    result.setHintingPreference(QFont::PreferNoHinting);
    if (style.size >= tightFrom) {
        result.setLetterSpacing(QFont::AbsoluteSpacing, tightSpacing * enlargement);
    }
    return result;
}

} // namespace vellmark::kit
