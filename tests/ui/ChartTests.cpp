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

TEST(Chart, TheNamesOfNeighbouringSpansDoNotLieOverEachOther) {
    bool areBothNamed = false;
    for (double width = 0.01; width < 0.3; width += 0.005) {
        kit::ChartLook look;
        look.spans = {{.begin = 0.2, .end = 0.2 + width, .isHatched = true},
                      {.begin = 0.2 + width, .end = 0.2 + 2 * width, .isHatched = true}};
        const kit::ChartLayout layout = kit::chartLayout(look, size);
        const QImage bare = drawn(look, layout);
        look.spans[0].label = QStringLiteral("stale");
        const QImage first = drawn(look, layout);
        look.spans[1].label = look.spans[0].label;
        const QImage both = drawn(look, layout);
        areBothNamed = first != bare && both != first;
        for (int x = 0; x < size.width(); ++x) {
            for (int y = 0; y < size.height(); ++y) {
                ASSERT_TRUE(first.pixel(x, y) == bare.pixel(x, y) ||
                            both.pixel(x, y) == first.pixel(x, y))
                    << width << " " << x << " " << y;
            }
        }
    }
    EXPECT_TRUE(areBothNamed) << "there is room at last";
}

} // namespace
} // namespace vellmark::tests
