#include "ui/kit/ChartPainting.h"

#include <QImage>
#include <QPainter>
#include <gtest/gtest.h>

namespace vellmark::tests {
namespace {

constexpr QSize size(400, 120);

QImage drawn(const kit::ChartLook& look, const kit::ChartLayout& layout) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    kit::drawChart(painter, look, layout, kit::ColorRole::card);
    return image;
}

TEST(Chart, TheNameOfASpanStaysWithinIt) {
    bool isNamed = false;
    for (const bool isHatched : {true, false}) {
        for (double end = 0.41; end < 0.7; end += 0.005) {
            kit::ChartLook look;
            look.spans = {{.begin = 0.4, .end = end, .isHatched = isHatched}};
            const kit::ChartLayout layout = kit::chartLayout(look, size);
            const QImage bare = drawn(look, layout);
            look.spans[0].label = QStringLiteral("stale");
            const QImage named = drawn(look, layout);
            isNamed = named != bare;
            const double left = layout.place({0.4, 0}).x();
            const double right = layout.place({end, 0}).x();
            for (int x = 0; x < size.width(); ++x) {
                for (int y = 0; y < size.height() && (x < left - 1 || x > right + 1); ++y) {
                    ASSERT_EQ(named.pixel(x, y), bare.pixel(x, y)) << end << " " << x << " " << y;
                }
            }
        }
        EXPECT_TRUE(isNamed) << "there is room at last";
    }
}

} // namespace
} // namespace vellmark::tests
