#include "ui/popover/PopoverHeader.h"

#include "ui/Conversions.h"
#include "ui/kit/Button.h"
#include "ui/kit/FigureText.h"
#include "ui/kit/Label.h"

namespace vellmark {

namespace {
constexpr int padding = 16;
constexpr int statusGap = 2;
constexpr int iconSide = 15;
constexpr int textGap = 12;
} // namespace

PopoverHeader::PopoverHeader(QWidget* parent)
    : QWidget(parent), name_(new kit::Label(kit::style::popoverName, kit::ColorRole::ink, this)),
      status_(new kit::Label(kit::style::popoverStatus, kit::ColorRole::ink2, this)),
      refresh_(new kit::Button(kit::Button::Kind::plain, this)) {}

void PopoverHeader::setContent(const PopoverContent& content) {
    name_->setWords(qString(content.title));
    statusLine_ = content.statusLine;
    refresh_->setIconName(content.refresh.icon, iconSide);
    refresh_->setToolTip(qString(content.refresh.help));
    refresh_->setAccessibleName(qString(content.refresh.help));
    refresh_->setAccessibleDescription(qString(content.statusLine.text));
    refresh_->setTurning(content.isRefreshing);
    arrange();
}

void PopoverHeader::resizeEvent(QResizeEvent* /*event*/) {
    arrange();
}

void PopoverHeader::arrange() {
    // The glyph ends at the margin; the button's ground reaches beyond.
    const QSize button = refresh_->sizeHint();
    const int overhang = (button.width() - iconSide) / 2;
    refresh_->setGeometry(width() - padding + overhang - button.width(),
                          (height() - button.height()) / 2, button.width(), button.height());
    const int wide = refresh_->x() - textGap - padding;
    name_->setGeometry(padding, padding, wide, kit::style::popoverName.lineHeight);
    status_->setGeometry(padding, padding + kit::style::popoverName.lineHeight + statusGap, wide,
                         kit::style::popoverStatus.lineHeight);
    const QString whole = qString(statusLine_.text);
    const bool fits = kit::textWidth(whole, status_->textStyle()) <= wide;
    status_->setWords(fits ? whole : qString(statusLine_.briefText));
    status_->setToolTip(fits ? QString() : whole);
    status_->setAccessibleName(whole);
}

} // namespace vellmark
