#include "ui/kit/Question.h"

#include "ui/kit/Button.h"
#include "ui/kit/FigureText.h"
#include "ui/kit/Label.h"
#include "ui/kit/Theme.h"

#include <QKeyEvent>
#include <QPainter>

#include <algorithm>
#include <utility>

namespace vellmark::kit {

namespace {
constexpr int questionWidth = 420;
constexpr int margin = 24;
constexpr int titleGap = 8;
constexpr int buttonsAbove = 20;
constexpr int gap = 12;
} // namespace

Question* Question::ask(QWidget* over, const Look& look, std::function<void()> onDeed) {
    auto* question = new Question(over->window(), look);
    connect(question, &QDialog::accepted, question, [deed = std::move(onDeed)] {
        if (deed) {
            deed();
        }
    });
    question->open();
    return question;
}

Question::Question(QWidget* over, const Look& look)
    : QDialog(over), title_(new Label(style::heading, ColorRole::ink, this)),
      words_(new Label(style::text, ColorRole::ink2, this)),
      deed_(new Button(Button::Kind::normal, this)),
      cancel_(new Button(Button::Kind::normal, this)) {
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(look.title);
    setAccessibleDescription(look.words);
    for (Label* label : {title_, words_}) {
        label->setMostLines(anyNumberOfLines);
    }
    title_->setWords(look.title);
    words_->setWords(look.words);
    deed_->setText(look.deed);
    cancel_->setText(look.cancel);
    connect(deed_, &QAbstractButton::clicked, this, [this] { accept(); });
    connect(cancel_, &QAbstractButton::clicked, this, [this] { reject(); });
    const int inner = questionWidth - 2 * margin;
    setFixedSize(questionWidth, margin + title_->heightForWidth(inner) + titleGap +
                                    words_->heightForWidth(inner) + buttonsAbove +
                                    cancel_->sizeHint().height() + margin);
    setTabOrder(cancel_, deed_);
    cancel_->setFocus(Qt::TabFocusReason);
}

void Question::resizeEvent(QResizeEvent* /*event*/) {
    const int inner = width() - 2 * margin;
    title_->setGeometry(margin, margin, inner, title_->heightForWidth(inner));
    words_->setGeometry(margin, margin + title_->height() + titleGap, inner,
                        words_->heightForWidth(inner));
    int right = width() - margin;
    for (Button* button : {deed_, cancel_}) {
        const QSize size = button->sizeHint();
        right -= size.width();
        button->setGeometry(right, height() - margin - size.height(), size.width(), size.height());
        right -= gap;
    }
}

void Question::keyPressEvent(QKeyEvent* event) {
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (auto* button = qobject_cast<QAbstractButton*>(focusWidget());
        isReturn && button != nullptr) {
        button->click();
    } else {
        QDialog::keyPressEvent(event);
    }
}

void Question::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(rect(), color(ColorRole::window));
}

} // namespace vellmark::kit
