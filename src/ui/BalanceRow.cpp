#include "ui/BalanceRow.h"

#include "ui/Conversions.h"
#include "ui/kit/Label.h"

#include <algorithm>

namespace vellmark {

namespace {
constexpr int detailGap = 6;
constexpr int labelGap = 12;
} // namespace

BalanceRow::BalanceRow(QWidget* parent)
    : QWidget(parent), label_(new kit::Label(kit::style::row, kit::ColorRole::ink, this)),
      value_(new kit::Label(kit::style::value, kit::ColorRole::ink, this)),
      detail_(new kit::Label(kit::style::small, kit::ColorRole::ink2, this)) {
    detail_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
}

void BalanceRow::setContent(const BalanceRowContent& content) {
    label_->setWords(qString(content.label));
    label_->setColor(content.warns ? kit::ColorRole::criticalText : kit::ColorRole::ink);
    value_->setChangingWords(qString(content.value));
    detail_->setWords(qString(content.detail));
    arrange();
}

void BalanceRow::resizeEvent(QResizeEvent* /*event*/) {
    arrange();
}

void BalanceRow::arrange() {
    // Numbers are never shortened: the label gives way first, a sentence as detail after it.
    const int value = value_->wantedWidth();
    const int gap = value > 0 && detail_->wantedWidth() > 0 ? detailGap : 0;
    const int detail = std::min(detail_->wantedWidth(), std::max(width() - value - gap, 0));
    detail_->setGeometry(width() - detail, 0, detail, height());
    value_->setGeometry(width() - detail - gap - value, 0, value, height());
    label_->setGeometry(0, 0, std::max(value_->x() - labelGap, 0), height());
}

} // namespace vellmark
