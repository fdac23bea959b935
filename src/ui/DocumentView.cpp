#include "ui/DocumentView.h"

#include "ui/Conversions.h"
#include "ui/kit/FigureText.h"
#include "ui/kit/Label.h"
#include "ui/kit/Theme.h"

#include <QPainter>

#include <algorithm>

namespace vellmark {

namespace {

using Kind = TextBlock::Kind;

constexpr int itemIndent = 16;
constexpr double bulletSide = 4;

const kit::TextStyle& styleOf(Kind kind) {
    return kind == Kind::heading ? kit::style::heading : kit::style::prose;
}

/// Above a part that is not the first.
int gapAbove(Kind kind, Kind before) {
    if (kind == Kind::heading) {
        return 24;
    }
    return before == Kind::heading || kind == Kind::item ? 6 : 12;
}

} // namespace

DocumentView::DocumentView(QWidget* parent) : QWidget(parent) {}

void DocumentView::setBlocks(const std::vector<TextBlock>& blocks) {
    while (parts_.size() > blocks.size()) {
        delete parts_.back().label;
        parts_.pop_back();
    }
    while (parts_.size() < blocks.size()) {
        auto* label = new kit::Label(kit::style::prose, kit::ColorRole::ink, this);
        label->setMostLines(kit::anyNumberOfLines);
        label->show();
        parts_.push_back({Kind::paragraph, label});
    }
    for (std::size_t index = 0; index < blocks.size(); ++index) {
        parts_[index].kind = blocks[index].kind;
        parts_[index].label->setTextStyle(styleOf(blocks[index].kind));
        parts_[index].label->setWords(qString(blocks[index].text));
    }
    resizeEvent(nullptr);
    updateGeometry();
    update();
}

std::vector<QRect> DocumentView::places(int width) const {
    std::vector<QRect> result;
    int top = 0;
    for (std::size_t index = 0; index < parts_.size(); ++index) {
        const Part& part = parts_[index];
        const int left = part.kind == Kind::item ? itemIndent : 0;
        const int wide = std::max(std::min(width, mostTextWidth) - left, 1);
        if (index > 0) {
            top += gapAbove(part.kind, parts_[index - 1].kind);
        }
        result.emplace_back(left, top, wide, part.label->heightForWidth(wide));
        top += result.back().height();
    }
    return result;
}

int DocumentView::heightForWidth(int width) const {
    const std::vector<QRect> all = places(width);
    return all.empty() ? 0 : all.back().bottom() + 1;
}

void DocumentView::resizeEvent(QResizeEvent* /*event*/) {
    const std::vector<QRect> all = places(width());
    for (std::size_t index = 0; index < parts_.size(); ++index) {
        parts_[index].label->setGeometry(all[index]);
    }
}

void DocumentView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(kit::color(kit::ColorRole::ink3));
    const double middle = kit::style::prose.lineHeight / 2.0;
    for (const Part& part : parts_) {
        if (part.kind == Kind::item) {
            painter.drawEllipse(QPointF(bulletSide, part.label->y() + middle), bulletSide / 2,
                                bulletSide / 2);
        }
    }
}

} // namespace vellmark
