#include "ui/kit/Tabs.h"

#include "ui/kit/FigureText.h"
#include "ui/kit/Icon.h"
#include "ui/kit/Metrics.h"

#include <QHoverEvent>
#include <QPainter>
#include <QSignalBlocker>

#include <cmath>

namespace vellmark::kit {

namespace {
constexpr int tabHeight = 30;
constexpr int padding = 10;
constexpr int tabGap = 4;
constexpr int iconSide = 11;
constexpr int iconGap = 6;
constexpr int logoSide = 16;
constexpr int logoGap = 8;

int wordsLeft(const TabLook& tab) {
    return padding + (tab.logo ? logoSide + logoGap : iconSide + iconGap);
}
} // namespace

Tabs::Tabs(QWidget* parent)
    : QTabBar(parent), pointing_(this), interaction_(this, FocusShape{radius::control, focusGap}) {
    setDrawBase(false);
    setExpanding(false);
    setUsesScrollButtons(false);
    setElideMode(Qt::ElideNone);
    setFocusPolicy(Qt::StrongFocus);
    connect(this, &QTabBar::currentChanged, this, [this](int index) {
        placeFocus();
        if (onChoose) {
            onChoose(index);
        }
    });
}

void Tabs::setTabs(const std::vector<TabLook>& tabs, int current) {
    const QSignalBlocker quiet(this);
    const bool isSame = tabs == tabs_;
    tabs_ = tabs;
    const int wanted = static_cast<int>(tabs.size());
    while (count() > wanted) {
        removeTab(count() - 1);
    }
    while (count() < wanted) {
        addTab(QString());
    }
    for (int index = 0; index < wanted && !isSame; ++index) {
        const TabLook& tab = tabs[static_cast<std::size_t>(index)];
        setTabText(index, tab.words);
        setAccessibleTabName(index, tab.spokenWords);
    }
    if (currentIndex() != current) {
        setCurrentIndex(current);
    }
    placeFocus();
    update();
}

QRect Tabs::tabGround(int index) const {
    return tabRect(index).adjusted(0, 0, -tabGap, 0);
}

QSize Tabs::tabSizeHint(int index) const {
    if (index < 0 || index >= static_cast<int>(tabs_.size())) {
        return {0, tabHeight};
    }
    const TabLook& tab = tabs_[static_cast<std::size_t>(index)];
    const double words = textWidth(tab.words, style::row);
    return {wordsLeft(tab) + static_cast<int>(std::ceil(words)) + padding + tabGap, tabHeight};
}

QSize Tabs::sizeHint() const {
    int width = 0;
    for (int index = 0; index < count(); ++index) {
        width += tabSizeHint(index).width();
    }
    return {width, tabHeight};
}

void Tabs::tabLayoutChange() {
    QTabBar::tabLayoutChange();
    placeFocus();
}

void Tabs::placeFocus() {
    if (currentIndex() >= 0) {
        interaction_.setFocusPart(tabGround(currentIndex()));
    }
}

bool Tabs::event(QEvent* event) {
    switch (event->type()) {
    case QEvent::HoverEnter:
    case QEvent::HoverMove:
        pointAt(tabAt(static_cast<QHoverEvent*>(event)->position().toPoint()));
        break;
    case QEvent::HoverLeave:
    case QEvent::Hide:
        pointAt(-1);
        break;
    default:
        break;
    }
    return QTabBar::event(event);
}

void Tabs::keyPressEvent(QKeyEvent* event) {
    if (hasFocus()) {
        interaction_.showFocus();
    }
    QTabBar::keyPressEvent(event);
}

void Tabs::wheelEvent(QWheelEvent* event) {
    // The wheel scrolls the strip; it does not choose.
    event->ignore();
}

void Tabs::pointAt(int index) {
    if (index == pointedAt_) {
        return;
    }
    pointedAt_ = index;
    pointing_.jumpTo(0);
    if (index >= 0) {
        pointing_.moveTo(1, duration::hoverIn);
    }
}

void Tabs::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    for (int index = 0; index < count(); ++index) {
        paintTab(painter, index);
    }
}

void Tabs::paintTab(QPainter& painter, int index) const {
    const TabLook& tab = tabs_[static_cast<std::size_t>(index)];
    const bool isSelected = index == currentIndex();
    const QRectF ground = tabGround(index);
    const QColor hover = mixed(Qt::transparent, color(ColorRole::hover),
                               index == pointedAt_ ? pointing_.value() : 0);
    painter.setPen(Qt::NoPen);
    painter.setBrush(isSelected ? color(ColorRole::select) : hover);
    painter.drawRoundedRect(ground, radius::control, radius::control);
    const QColor words = color(isSelected ? ColorRole::ink : ColorRole::ink2);
    const double left = ground.left() + padding;
    if (tab.logo) {
        drawLogo(painter, QPointF(left, ground.center().y() - logoSide / 2.0), logoSide, *tab.logo,
                 tab.badge);
    } else {
        drawIcon(painter, QRectF(left, ground.center().y() - iconSide / 2.0, iconSide, iconSide),
                 tab.iconName, words);
    }
    painter.setPen(words);
    drawText(painter, ground.adjusted(wordsLeft(tab), 0, 0, 0), Qt::AlignLeft, tab.words,
             style::row);
}

} // namespace vellmark::kit
