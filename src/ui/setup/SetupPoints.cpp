#include "ui/setup/SetupPoints.h"

#include "ui/Conversions.h"
#include "ui/kit/CardGround.h"
#include "ui/kit/FigureText.h"
#include "ui/kit/Icon.h"
#include "ui/kit/Label.h"
#include "ui/kit/Theme.h"

#include <QPainter>

#include <algorithm>

namespace vellmark {

namespace {
constexpr int padding = 16;
constexpr int headingHeight = 16;
constexpr int headingGap = 8;
constexpr int pointGap = 8;
constexpr int iconSide = 14;
constexpr int textLeft = padding + iconSide + 10;
} // namespace

SetupPoints::SetupPoints(QWidget* parent)
    : QWidget(parent), heading_(new kit::Label(kit::style::strong, kit::ColorRole::ink, this)) {
    heading_->setHeading(true);
}

void SetupPoints::setContent(const SetupPointsContent& content) {
    content_ = content;
    heading_->setWords(qString(content.heading));
    while (points_.size() > content.points.size()) {
        delete points_.back();
        points_.pop_back();
    }
    while (points_.size() < content.points.size()) {
        points_.push_back(new kit::Label(kit::style::body, kit::ColorRole::ink, this));
        points_.back()->setMostLines(kit::anyNumberOfLines);
        points_.back()->show();
    }
    for (std::size_t index = 0; index < points_.size(); ++index) {
        points_[index]->setWords(qString(content.points[index].text));
    }
    arrange(width(), true);
    update();
}

int SetupPoints::arrange(int width, bool moves) const {
    const int wide = std::max(width - textLeft - padding, 1);
    if (moves) {
        heading_->setGeometry(padding, padding - 2, std::max(width - 2 * padding, 0),
                              headingHeight);
    }
    int top = padding - 2 + headingHeight + headingGap;
    for (kit::Label* point : points_) {
        const int height = point->heightForWidth(wide);
        if (moves) {
            point->setGeometry(textLeft, top, wide, height);
        }
        top += height + pointGap;
    }
    return top - pointGap + padding;
}

void SetupPoints::resizeEvent(QResizeEvent* /*event*/) {
    arrange(width(), true);
}

void SetupPoints::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    kit::drawCardGround(painter, rect());
    const int lineHeight = kit::style::body.lineHeight;
    for (std::size_t index = 0; index < points_.size(); ++index) {
        const QRectF box(padding, points_[index]->y() + (lineHeight - iconSide) / 2.0, iconSide,
                         iconSide);
        kit::drawIcon(painter, box, content_.points[index].icon, kit::color(kit::ColorRole::ink2));
    }
}

} // namespace vellmark
