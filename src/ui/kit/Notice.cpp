#include "ui/kit/Notice.h"

#include "ui/kit/Button.h"
#include "ui/kit/FigureText.h"
#include "ui/kit/Icon.h"
#include "ui/kit/Label.h"
#include "ui/kit/Metrics.h"

#include <QPainter>

#include <algorithm>

namespace vellmark::kit {

namespace {

constexpr int leastHeight = 36;
constexpr int verticalPadding = 8;
constexpr int horizontalPadding = 12;
constexpr int buttonPadding = 8;
constexpr int markSide = 14;
constexpr int gap = 8;
/// The rest is in the tooltip.
constexpr int mostLines = 2;
constexpr int textLeft = horizontalPadding + markSide + gap;

ColorRole washOf(Notice::Kind kind) {
    switch (kind) {
    case Notice::Kind::attention:
        return ColorRole::attentionWash;
    case Notice::Kind::critical:
        return ColorRole::criticalWash;
    case Notice::Kind::neutral:
        break;
    }
    return ColorRole::neutralWash;
}

ColorRole markOf(const Notice::Look& look) {
    switch (look.kind) {
    case Notice::Kind::attention:
        return ColorRole::attention;
    case Notice::Kind::critical:
        return ColorRole::critical;
    case Notice::Kind::neutral:
        break;
    }
    return look.iconName == "checkmark" ? ColorRole::ink : ColorRole::ink2;
}

} // namespace

Notice::Notice(QWidget* parent)
    : QWidget(parent), strongWords_(new Label(style::value, ColorRole::ink, this)),
      words_(new Label(style::text, ColorRole::ink, this)),
      button_(new Button(Button::Kind::outlined, this)) {
    words_->setMostLines(mostLines);
    strongWords_->hide();
    button_->hide();
    connect(button_, &QAbstractButton::clicked, this, [this] {
        if (onPress) {
            onPress();
        }
    });
}

void Notice::setLook(const Look& look) {
    if (look == look_) {
        return;
    }
    look_ = look;
    strongWords_->setWords(look.strongWords);
    strongWords_->setVisible(!look.strongWords.isEmpty());
    words_->setWords(look.words);
    const QString words = (look.strongWords + QLatin1Char(' ') + look.words).trimmed();
    setAccessibleName(look.spokenWords.isEmpty() ? words : look.spokenWords);
    button_->setText(look.buttonWords);
    button_->setVisible(!look.buttonWords.isEmpty());
    arrange();
    updateGeometry();
    update();
}

void Notice::setMostLines(int lines) {
    words_->setMostLines(lines);
    arrange();
    updateGeometry();
}

int Notice::textWidthFor(int width) const {
    int right = horizontalPadding;
    if (!look_.buttonWords.isEmpty()) {
        right = buttonPadding + button_->sizeHint().width() + gap;
    }
    int left = textLeft;
    if (!look_.strongWords.isEmpty()) {
        left += strongWords_->wantedWidth() + 4;
    }
    return std::max(width - left - right, 1);
}

int Notice::heightForWidth(int width) const {
    const int text = words_->heightForWidth(textWidthFor(width));
    const int button = look_.buttonWords.isEmpty() ? 0 : button_->sizeHint().height();
    return std::max(std::max(text, button) + 2 * verticalPadding, leastHeight);
}

QSize Notice::sizeHint() const {
    return {width(), heightForWidth(std::max(width(), 200))};
}

void Notice::resizeEvent(QResizeEvent* /*event*/) {
    arrange();
}

void Notice::arrange() {
    const int available = textWidthFor(width());
    const int textHeight = words_->heightForWidth(available);
    int left = textLeft;
    const int top = (height() - textHeight) / 2;
    if (!look_.strongWords.isEmpty()) {
        strongWords_->setGeometry(left, top, strongWords_->wantedWidth(), style::text.lineHeight);
        left += strongWords_->wantedWidth() + 4;
    }
    words_->setGeometry(left, top, available, textHeight);
    const QSize button = button_->sizeHint();
    button_->setGeometry(width() - buttonPadding - button.width(), (height() - button.height()) / 2,
                         button.width(), button.height());
}

void Notice::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color(washOf(look_.kind)));
    painter.drawRoundedRect(rect(), radius::notice, radius::notice);
    drawIcon(painter, QRectF(horizontalPadding, (height() - markSide) / 2.0, markSide, markSide),
             look_.iconName, color(markOf(look_)));
}

} // namespace vellmark::kit
