#include "ui/popover/PopoverFooter.h"

#include "ui/Conversions.h"
#include "ui/kit/Button.h"

#include <QPainter>

namespace vellmark {

namespace {
constexpr int padding = 17;
constexpr int gap = 18;
constexpr int lineHeight = 1;
constexpr int inset = kit::Button::plainPadding;

kit::Button* makeButton(QWidget* parent) {
    auto* button = new kit::Button(kit::Button::Kind::plain, parent);
    button->setContentColor(kit::ColorRole::ink2);
    return button;
}

void setControl(kit::Button& button, const ControlContent& content) {
    button.setText(qString(content.title));
    button.setToolTip(qString(content.help));
    if (!content.icon.empty()) {
        button.setIconName(content.icon);
    }
}
} // namespace

PopoverFooter::PopoverFooter(QWidget* parent)
    : QWidget(parent), openWindow_(makeButton(this)), about_(makeButton(this)),
      quit_(makeButton(this)) {}

void PopoverFooter::setContent(const PopoverContent& content) {
    setControl(*openWindow_, content.openWindow);
    setControl(*about_, content.about);
    setControl(*quit_, content.quit);
    arrange();
}

void PopoverFooter::resizeEvent(QResizeEvent* /*event*/) {
    arrange();
}

void PopoverFooter::arrange() {
    const auto place = [this](kit::Button* button, int left) {
        const QSize wanted = button->sizeHint();
        const int top = lineHeight + (height() - lineHeight - wanted.height()) / 2;
        button->setGeometry(left, top, wanted.width(), wanted.height());
        return left + wanted.width();
    };
    const int openEnd = place(openWindow_, padding - inset);
    place(about_, openEnd + gap - 2 * inset);
    place(quit_, width() - padding + inset - quit_->sizeHint().width());
}

void PopoverFooter::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(QRect(0, 0, width(), lineHeight), kit::color(kit::ColorRole::line));
}

} // namespace vellmark
