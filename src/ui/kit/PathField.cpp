#include "ui/kit/PathField.h"

#include "ui/kit/Button.h"
#include "ui/kit/Field.h"
#include "ui/kit/TextStyle.h"
#include "ui/kit/Theme.h"

#include <QKeyEvent>

#include <algorithm>

namespace vellmark::kit {

namespace {
constexpr int gap = 8;
constexpr int wantedFieldWidth = 260;
constexpr int leastFieldWidth = 160;
constexpr int iconSide = 12;
constexpr int resetSide = 20;
constexpr int resetInset = 4;
} // namespace

PathField::PathField(QWidget* parent)
    : QWidget(parent), field_(new Field(this)), choose_(new Button(Button::Kind::normal, this)),
      reset_(new Button(Button::Kind::plain, this)) {
    reset_->setIconName("xmark", iconSide);
    reset_->hide();
    field_->installEventFilter(this);
    connect(field_, &QLineEdit::editingFinished, this, [this] { enter(); });
    connect(choose_, &QAbstractButton::clicked, this, [this] {
        if (onBrowse) {
            onBrowse();
        }
    });
    connect(reset_, &QAbstractButton::clicked, this, [this] {
        // The button goes away with the path.
        field_->setFocus(Qt::OtherFocusReason);
        if (onReset) {
            onReset();
        }
    });
}

void PathField::setPaths(const QString& chosen, const QString& found) {
    field_->setPlaceholderText(found);
    QPalette palette = field_->palette();
    palette.setColor(QPalette::Text, color(ColorRole::ink));
    palette.setColor(QPalette::PlaceholderText, color(ColorRole::ink3));
    field_->setPalette(palette);
    field_->setToolTip(chosen.isEmpty() ? found : chosen);
    // What is being typed is not swept away by a refresh.
    if (!field_->isModified() || chosen != chosen_) {
        chosen_ = chosen;
        field_->setText(chosen);
        field_->setCursorPosition(0);
    }
    reset_->setVisible(!chosen.isEmpty());
    field_->setRoomAtEnd(chosen.isEmpty() ? 0 : resetSide);
}

void PathField::setWords(const QString& choose, const QString& reset) {
    choose_->setText(choose);
    reset_->setAccessibleName(reset);
    reset_->setToolTip(reset);
    arrange();
}

void PathField::setFieldName(const QString& name) {
    field_->setAccessibleName(name);
    choose_->setAccessibleName(name + QStringLiteral(": ") + choose_->text());
    reset_->setAccessibleName(name + QStringLiteral(": ") + reset_->toolTip());
}

std::vector<QWidget*> PathField::controls() const {
    return {field_, reset_, choose_};
}

void PathField::enter() {
    if (!field_->isModified()) {
        return;
    }
    field_->setModified(false);
    const QString path = field_->text().trimmed();
    if (path == chosen_) {
        return;
    }
    // Until the owner says what holds now.
    if (path.isEmpty() && onReset) {
        onReset();
    } else if (onEnter) {
        onEnter(path);
    }
}

bool PathField::eventFilter(QObject* watched, QEvent* event) {
    if (watched == field_ && event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape && field_->isModified()) {
        field_->setText(chosen_);
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

QSize PathField::sizeHint() const {
    return {wantedFieldWidth + gap + choose_->sizeHint().width() + 2 * ringRoom,
            field_->sizeHint().height() + 2 * ringRoom};
}

QSize PathField::minimumSizeHint() const {
    return sizeHint() - QSize(wantedFieldWidth - leastFieldWidth, 0);
}

void PathField::resizeEvent(QResizeEvent* /*event*/) {
    arrange();
}

void PathField::arrange() {
    const QRect inside = rect().adjusted(ringRoom, ringRoom, -ringRoom, -ringRoom);
    const QSize choose = choose_->sizeHint();
    choose_->setGeometry(inside.right() + 1 - choose.width(), inside.top(), choose.width(),
                         inside.height());
    field_->setGeometry(inside.left(), inside.top(),
                        std::max(choose_->x() - gap - inside.left(), 0), inside.height());
    const QRect text = field_->geometry();
    reset_->setGeometry(text.right() + 1 - resetSide - resetInset,
                        text.top() + (text.height() - resetSide) / 2, resetSide, resetSide);
}

} // namespace vellmark::kit
