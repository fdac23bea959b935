#include "ui/window/LicenceRow.h"

#include "ui/Conversions.h"
#include "ui/kit/Button.h"
#include "ui/kit/Label.h"

#include <algorithm>

namespace vellmark {

namespace {
constexpr int padding = 16;
constexpr int gap = 12;
constexpr int linkSide = 28;
constexpr int nameTop = 10;
constexpr int lineGap = 2;
} // namespace

LicenceRow::LicenceRow(const AboutPageActions& actions, QWidget* parent)
    : QWidget(parent), name_(new kit::Label(kit::style::strong, kit::ColorRole::ink, this)),
      use_(new kit::Label(kit::style::small, kit::ColorRole::ink2, this)),
      licence_(new kit::Label(kit::style::text, kit::ColorRole::ink2, this)),
      link_(new kit::Button(kit::Button::Kind::plain, this)) {
    licence_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    link_->setIconName("arrow.up.right");
    connect(link_, &QAbstractButton::clicked, this,
            [this, &actions] { actions.openURL(content_.url); });
}

void LicenceRow::setContent(const LicenceContent& content) {
    content_ = content;
    name_->setWords(qString(content.name));
    use_->setWords(qString(content.use));
    licence_->setWords(qString(content.licence));
    link_->setToolTip(qString(content.url));
    link_->setAccessibleName(qString(content.accessibilityText));
    resizeEvent(nullptr);
}

void LicenceRow::resizeEvent(QResizeEvent* /*event*/) {
    link_->setGeometry(width() - padding - linkSide + kit::Button::plainPadding,
                       (rowHeight - linkSide) / 2, linkSide, linkSide);
    const int licence = licence_->wantedWidth();
    licence_->setGeometry(link_->x() - gap - licence, 0, licence, rowHeight);
    const int wide = std::max(licence_->x() - gap - padding, 1);
    name_->setGeometry(padding, nameTop, wide, kit::style::strong.lineHeight);
    use_->setGeometry(padding, nameTop + kit::style::strong.lineHeight + lineGap, wide,
                      kit::style::small.lineHeight);
}

} // namespace vellmark
