#include "ui/NoAgentsHint.h"

#include "ui/Conversions.h"
#include "ui/kit/Button.h"
#include "ui/kit/FigureText.h"
#include "ui/kit/Icon.h"
#include "ui/kit/Label.h"

#include <QPainter>

#include <algorithm>

namespace vellmark {

namespace {
constexpr int topPadding = 36;
constexpr int sidePadding = 48;
constexpr int bottomPadding = 40;
constexpr int iconSide = 32;
constexpr int titleGap = 12;
constexpr int wordsGap = 4;
constexpr int buttonGap = 16;
constexpr int widestWords = 334;
} // namespace

NoAgentsHint::NoAgentsHint(QWidget* parent)
    : QWidget(parent), title_(new kit::Label(kit::style::heading, kit::ColorRole::ink, this)),
      words_(new kit::Label(kit::style::text, kit::ColorRole::ink2, this)),
      button_(new kit::Button(kit::Button::Kind::primary, this)) {
    title_->setAlignment(Qt::AlignCenter);
    words_->setAlignment(Qt::AlignCenter);
    words_->setMostLines(kit::anyNumberOfLines);
    connect(button_, &QAbstractButton::clicked, this, [this] { onOpenSettings(); });
}

void NoAgentsHint::setContent(const NoAgentsContent& content) {
    iconName_ = content.icon;
    title_->setWords(qString(content.title));
    words_->setWords(qString(content.text));
    button_->setText(qString(content.buttonTitle));
    updateGeometry();
}

int NoAgentsHint::wordsWidth() const {
    return std::min(std::max(width() - 2 * sidePadding, 1), widestWords);
}

QSize NoAgentsHint::sizeHint() const {
    const int words = words_->heightForWidth(widestWords);
    return {widestWords + 2 * sidePadding,
            topPadding + iconSide + titleGap + kit::style::heading.lineHeight + wordsGap + words +
                buttonGap + button_->sizeHint().height() + bottomPadding};
}

void NoAgentsHint::resizeEvent(QResizeEvent* /*event*/) {
    int top = topPadding + iconSide + titleGap;
    title_->setGeometry(0, top, width(), kit::style::heading.lineHeight);
    top += title_->height() + wordsGap;
    const int wide = wordsWidth();
    words_->setGeometry((width() - wide) / 2, top, wide, words_->heightForWidth(wide));
    top += words_->height() + buttonGap;
    const QSize button = button_->sizeHint();
    button_->setGeometry((width() - button.width()) / 2, top, button.width(), button.height());
}

void NoAgentsHint::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    kit::drawIcon(painter, QRectF((width() - iconSide) / 2.0, topPadding, iconSide, iconSide),
                  iconName_, kit::color(kit::ColorRole::ink3));
}

} // namespace vellmark
