#include "ui/popover/PopoverTabStrip.h"

#include "ui/Conversions.h"
#include "ui/ProviderLogo.h"
#include "ui/kit/Tabs.h"

#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>

namespace vellmark {

namespace {
constexpr int sidePadding = 16;
constexpr int topPadding = 4;

kit::TabLook tabLook(const PopoverTabContent& content) {
    kit::TabLook look;
    look.words = qString(content.title);
    look.spokenWords = qString(content.accessibilityText);
    if (content.tab.provider) {
        look.logo = providerLogo(*content.tab.provider);
    } else {
        look.iconName = "square.grid.2x2";
    }
    look.badge = badgeColor(content.badge);
    return look;
}
} // namespace

PopoverTabStrip::PopoverTabStrip(QWidget* parent)
    : QScrollArea(parent), strip_(new QWidget), tabs_(new kit::Tabs(strip_)) {
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus);
    viewport()->setAutoFillBackground(false);
    setWidget(strip_);
    strip_->setAutoFillBackground(false);
    tabs_->onChoose = [this](int index) {
        showCurrent();
        if (onChoose) {
            onChoose(contents_[static_cast<std::size_t>(index)].tab);
        }
    };
}

void PopoverTabStrip::setContent(const PopoverContent& content) {
    contents_ = content.tabs;
    std::vector<kit::TabLook> looks;
    int selected = 0;
    for (const PopoverTabContent& tab : contents_) {
        if (tab.tab == content.selectedTab) {
            selected = static_cast<int>(looks.size());
        }
        looks.push_back(tabLook(tab));
    }
    const bool isOtherTab = selected != tabs_->currentIndex();
    tabs_->setTabs(looks, selected);
    const QSize wanted = tabs_->sizeHint();
    tabs_->setGeometry(sidePadding, topPadding, wanted.width(), wanted.height());
    strip_->resize(wanted.width() + 2 * sidePadding, std::max(height(), wanted.height()));
    // New values leave the strip where it was scrolled to.
    if (isOtherTab) {
        showCurrent();
    }
}

void PopoverTabStrip::choose(int index) {
    if (index >= 0 && index < tabs_->count()) {
        tabs_->setCurrentIndex(index);
    }
}

void PopoverTabStrip::chooseNeighbour(int step) {
    choose(tabs_->currentIndex() + step);
}

void PopoverTabStrip::resizeEvent(QResizeEvent* event) {
    QScrollArea::resizeEvent(event);
    strip_->resize(strip_->width(), height());
    showCurrent();
}

void PopoverTabStrip::wheelEvent(QWheelEvent* event) {
    const QPoint delta = event->pixelDelta().isNull() ? event->angleDelta() : event->pixelDelta();
    const int step = delta.x() != 0 ? delta.x() : delta.y();
    horizontalScrollBar()->setValue(horizontalScrollBar()->value() - step);
    event->accept();
}

void PopoverTabStrip::showCurrent() {
    const QRect tab = tabs_->tabGround(std::max(tabs_->currentIndex(), 0));
    const QRect place = tab.translated(tabs_->pos());
    ensureVisible(place.left(), place.center().y(), sidePadding, 0);
    ensureVisible(place.right(), place.center().y(), sidePadding, 0);
}

} // namespace vellmark
