#include "ui/popover/PopoverHeader.h"

#include "ui/Conversions.h"
#include "ui/kit/Button.h"
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
    status_->setWords(qString(content.statusLine));
    refresh_->setIconName(content.refresh.icon, iconSide);
    refresh_->setToolTip(qString(content.refresh.help));
    refresh_->setAccessibleName(qString(content.refresh.help));
    refresh_->setAccessibleDescription(qString(content.statusLine));
    refresh_->setTurning(content.isRefreshing);
}

void PopoverHeader::resizeEvent(QResizeEvent* /*event*/) {
    // The glyph ends at the margin; the button's ground reaches beyond.
    const QSize button = refresh_->sizeHint();
    const int overhang = (button.width() - iconSide) / 2;
    refresh_->setGeometry(width() - padding + overhang - button.width(),
                          (height() - button.height()) / 2, button.width(), button.height());
    const int wide = refresh_->x() - textGap - padding;
    name_->setGeometry(padding, padding, wide, kit::style::popoverName.lineHeight);
    status_->setGeometry(padding, padding + kit::style::popoverName.lineHeight + statusGap, wide,
                         kit::style::popoverStatus.lineHeight);
}

} // namespace vellmark
