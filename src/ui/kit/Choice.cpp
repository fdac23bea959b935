#include "ui/kit/Choice.h"

#include "ui/kit/FigureText.h"
#include "ui/kit/Icon.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/TextStyle.h"
#include "ui/kit/Theme.h"

#include <QAbstractItemView>
#include <QPainter>
#include <QStyledItemDelegate>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace vellmark::kit {

namespace {
constexpr int fieldHeight = 28;
constexpr int padding = 8;
constexpr int iconSide = 14;
constexpr int iconGap = 8;
constexpr int leastWidth = 120;
constexpr int entryHeight = 28;
constexpr int markGap = 6;
constexpr int entryInset = 4;
/// What an entry needs beside its words.
constexpr int entryRoom = 2 * (padding + entryInset) + iconSide + markGap;
constexpr int listFrame = 2;

/// An entry of the list: a check mark before the one that is chosen.
class Entries : public QStyledItemDelegate {
public:
    explicit Entries(QComboBox* owner) : QStyledItemDelegate(owner), owner_(owner) {}

    QSize sizeHint(const QStyleOptionViewItem& /*option*/,
                   const QModelIndex& index) const override {
        const double words = textWidth(index.data().toString(), style::row);
        return {static_cast<int>(std::ceil(words)) + entryRoom, entryHeight};
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->fillRect(option.rect, color(ColorRole::popover));
        if ((option.state & (QStyle::State_Selected | QStyle::State_MouseOver)) != 0) {
            painter->setPen(Qt::NoPen);
            painter->setBrush(color(ColorRole::select));
            painter->drawRoundedRect(option.rect.adjusted(entryInset, 1, -entryInset, -1),
                                     radius::control, radius::control);
        }
        QRectF words =
            QRectF(option.rect).adjusted(entryInset + padding, 0, -entryInset - padding, 0);
        if (index.row() == owner_->currentIndex()) {
            drawIcon(*painter,
                     QRectF(words.left(), words.center().y() - iconSide / 2.0, iconSide, iconSide),
                     "checkmark", color(ColorRole::ink));
        }
        words.setLeft(words.left() + iconSide + markGap);
        painter->setPen(color(ColorRole::ink));
        drawText(*painter, words, Qt::AlignLeft, index.data().toString(), style::row);
        painter->restore();
    }

private:
    QComboBox* owner_;
};

/// So that what Qt draws around the entries has their ground.
void useThemeColors(QWidget& widget) {
    QPalette palette = widget.palette();
    for (const QPalette::ColorRole role : {QPalette::Window, QPalette::Base, QPalette::Button}) {
        palette.setColor(role, color(ColorRole::popover));
    }
    for (const QPalette::ColorRole role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(role, color(ColorRole::ink));
    }
    for (const QPalette::ColorRole role : {QPalette::Dark, QPalette::Mid, QPalette::Shadow}) {
        palette.setColor(role, color(ColorRole::lineStrong));
    }
    widget.setPalette(palette);
}
} // namespace

Choice::Choice(QWidget* parent)
    : QComboBox(parent), interaction_(this, FocusShape{radius::control, 0}) {
    setFocusPolicy(Qt::StrongFocus);
    setItemDelegate(new Entries(this));
    connect(this, &QComboBox::activated, this, [this](int index) {
        if (onChoose) {
            onChoose(index);
        }
    });
}

void Choice::setChoices(const QStringList& choices) {
    QStringList former;
    for (int index = 0; index < count(); ++index) {
        former << itemText(index);
    }
    if (former == choices) {
        return;
    }
    const int current = currentIndex();
    clear();
    addItems(choices);
    setCurrentIndex(std::min<int>(current, static_cast<int>(choices.size()) - 1));
    updateGeometry();
}

/// As wide as its list, which lies over it.
QSize Choice::sizeHint() const {
    double widest = 0;
    for (int index = 0; index < count(); ++index) {
        widest = std::max(widest, textWidth(itemText(index), style::row));
    }
    const int width = static_cast<int>(std::ceil(widest)) + entryRoom + listFrame;
    return {std::max(width, leastWidth), fieldHeight};
}

void Choice::showPopup() {
    useThemeColors(*view());
    useThemeColors(*view()->window());
    QComboBox::showPopup();
}

void Choice::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(isEnabled() ? 1 : disabledOpacity);
    painter.setBrush(
        mixed(color(ColorRole::card), color(ColorRole::fillHover), interaction_.hover()));
    painter.setPen(QPen(color(ColorRole::lineStrong), 1));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), radius::control - 0.5,
                            radius::control - 0.5);
    const int wordsWidth = width() - 2 * padding - iconGap - iconSide;
    painter.setPen(color(ColorRole::ink));
    drawText(painter, QRectF(padding, 0, wordsWidth, height()), Qt::AlignLeft,
             elidedText(currentText(), style::text, wordsWidth), style::text);
    drawIcon(painter,
             QRectF(width() - padding - iconSide, (height() - iconSide) / 2.0, iconSide, iconSide),
             "chevron.up.chevron.down", color(ColorRole::ink2));
}

void Choice::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

} // namespace vellmark::kit
