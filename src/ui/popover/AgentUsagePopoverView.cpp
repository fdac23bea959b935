#include "ui/popover/AgentUsagePopoverView.h"

#include "ui/NoAgentsHint.h"
#include "ui/kit/Button.h"
#include "ui/kit/ScrollArea.h"
#include "ui/kit/Tabs.h"
#include "ui/kit/Theme.h"
#include "ui/popover/AgentTabView.h"
#include "ui/popover/OverviewList.h"
#include "ui/popover/PopoverFooter.h"
#include "ui/popover/PopoverHeader.h"
#include "ui/popover/PopoverTabStrip.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>

namespace vellmark {

namespace {
constexpr int headerHeight = 72;
constexpr int tabStripHeight = 46;
constexpr int lineHeight = 1;
constexpr int footerHeight = 58;
constexpr int scrollStep = 40;
} // namespace

const int AgentUsagePopoverView::tallest =
    headerHeight + tabStripHeight + lineHeight + mostContentHeight + footerHeight;

AgentUsagePopoverView::AgentUsagePopoverView(AgentUIActions actions, QWidget* parent)
    : QWidget(parent), actions_(std::move(actions)), header_(new PopoverHeader(this)),
      tabStrip_(new PopoverTabStrip(this)), scroller_(new kit::ScrollArea(this)),
      pages_(new QWidget), overview_(new OverviewList(actions_, mostContentHeight, pages_)),
      agentTab_(new AgentTabView(actions_, pages_)), noAgents_(new NoAgentsHint(pages_)),
      footer_(new PopoverFooter(this)) {
    setFixedWidth(viewWidth);
    // Takes the keys while no control has the focus.
    setFocusPolicy(Qt::ClickFocus);
    for (QWidget* page : pages()) {
        page->resize(viewWidth, leastContentHeight);
        page->hide();
    }
    scroller_->setObjectName(QStringLiteral("content"));
    scroller_->setWidget(pages_);
    scroller_->verticalScrollBar()->setSingleStep(scrollStep);
    pages_->setAutoFillBackground(false);
    tabStrip_->onChoose = [this](const PopoverTab& tab) { selectTab(tab); };
    noAgents_->onOpenSettings = [this] { actions_.openSettings(); };
    const auto press = [this](kit::Button* button, std::function<void()> AgentUIActions::*action) {
        connect(button, &QAbstractButton::clicked, this, [this, action] { (actions_.*action)(); });
    };
    press(header_->refreshButton(), &AgentUIActions::refresh);
    press(footer_->openWindowButton(), &AgentUIActions::openWindow);
    press(footer_->aboutButton(), &AgentUIActions::showAbout);
    press(footer_->quitButton(), &AgentUIActions::quit);
}

void AgentUsagePopoverView::setContent(PopoverContent content) {
    if (content == content_) {
        return;
    }
    content_ = std::move(content);
    header_->setContent(content_);
    tabStrip_->setContent(content_);
    tabStrip_->setVisible(!content_.tabs.empty());
    footer_->setContent(content_);
    showPage();
}

void AgentUsagePopoverView::selectTab(const PopoverTab& tab) {
    content_.selectedTab = tab;
    showPage();
    scrollToTop();
    if (onSelectTab) {
        onSelectTab(tab);
    }
}

void AgentUsagePopoverView::showPage() {
    const AgentBlockContent* agent = content_.selectedAgent();
    QWidget* shown = content_.noAgents  ? static_cast<QWidget*>(noAgents_)
                     : agent != nullptr ? static_cast<QWidget*>(agentTab_)
                                        : overview_;
    const QWidget* focused = window()->focusWidget();
    if (focused != nullptr && pages_->isAncestorOf(focused) && !shown->isAncestorOf(focused)) {
        // What had the keyboard goes out of sight; left alone it would jump to the foot.
        tabStrip_->tabs()->setFocus(Qt::OtherFocusReason);
    }
    if (content_.noAgents) {
        noAgents_->setContent(*content_.noAgents);
    } else if (agent != nullptr) {
        agentTab_->setContent(*agent, content_.openPage);
    } else {
        overview_->setContent(content_.agents);
    }
    for (QWidget* page : pages()) {
        page->setVisible(page == shown);
    }
    arrange();
    orderTabStops();
    if (wantedHeight() != lastWantedHeight_) {
        lastWantedHeight_ = wantedHeight();
        if (onHeightChange) {
            onHeightChange();
        }
    }
}

std::array<QWidget*, 3> AgentUsagePopoverView::pages() const {
    return {overview_, agentTab_, noAgents_};
}

void AgentUsagePopoverView::scrollToTop() {
    scroller_->verticalScrollBar()->setValue(0);
}

int AgentUsagePopoverView::pageHeight() const {
    if (content_.noAgents) {
        return noAgents_->sizeHint().height();
    }
    return content_.selectedAgent() != nullptr ? agentTab_->wantedHeight()
                                               : overview_->wantedHeight();
}

int AgentUsagePopoverView::contentTop() const {
    return headerHeight + (content_.tabs.empty() ? 0 : tabStripHeight) + lineHeight;
}

int AgentUsagePopoverView::wantedHeight() const {
    return contentTop() + std::clamp(pageHeight(), leastContentHeight, mostContentHeight) +
           footerHeight;
}

void AgentUsagePopoverView::resizeEvent(QResizeEvent* /*event*/) {
    arrange();
}

void AgentUsagePopoverView::arrange() {
    header_->setGeometry(0, 0, width(), headerHeight);
    tabStrip_->setGeometry(0, headerHeight, width(), tabStripHeight);
    const int top = contentTop();
    scroller_->setGeometry(0, top, width(), std::max(height() - footerHeight - top, 0));
    footer_->setGeometry(0, height() - footerHeight, width(), footerHeight);
    const int page = pageHeight();
    pages_->setFixedHeight(page);
    for (QWidget* shown : pages()) {
        shown->setGeometry(0, 0, width(), page);
    }
    update();
}

void AgentUsagePopoverView::orderTabStops() {
    std::vector<QWidget*> stops{header_->refreshButton(), tabStrip_->tabs()};
    std::vector<QWidget*> inPage{noAgents_->button()};
    if (!content_.noAgents) {
        inPage =
            content_.selectedAgent() != nullptr ? agentTab_->controls() : overview_->controls();
    }
    stops.insert(stops.end(), inPage.begin(), inPage.end());
    stops.insert(stops.end(),
                 {footer_->openWindowButton(), footer_->aboutButton(), footer_->quitButton()});
    for (std::size_t index = 1; index < stops.size(); ++index) {
        setTabOrder(stops[index - 1], stops[index]);
    }
}

void AgentUsagePopoverView::keyPressEvent(QKeyEvent* event) {
    const Qt::KeyboardModifiers modifiers = event->modifiers() & ~Qt::KeypadModifier;
    const bool isHandled = (modifiers == Qt::ControlModifier && handleCommandKey(event->key())) ||
                           (modifiers == Qt::NoModifier && handlePlainKey(event->key()));
    if (!isHandled) {
        QWidget::keyPressEvent(event);
    }
}

bool AgentUsagePopoverView::handleCommandKey(int key) {
    if (key >= Qt::Key_1 && key <= Qt::Key_9) {
        tabStrip_->choose(key - Qt::Key_1);
        return true;
    }
    if (key == Qt::Key_R) {
        actions_.refresh();
        return true;
    }
    return false;
}

bool AgentUsagePopoverView::handlePlainKey(int key) {
    QScrollBar* bar = scroller_->verticalScrollBar();
    switch (key) {
    case Qt::Key_Left:
        tabStrip_->chooseNeighbour(-1);
        return true;
    case Qt::Key_Right:
        tabStrip_->chooseNeighbour(1);
        return true;
    case Qt::Key_Up:
        bar->triggerAction(QScrollBar::SliderSingleStepSub);
        return true;
    case Qt::Key_Down:
        bar->triggerAction(QScrollBar::SliderSingleStepAdd);
        return true;
    case Qt::Key_PageUp:
        bar->triggerAction(QScrollBar::SliderPageStepSub);
        return true;
    case Qt::Key_PageDown:
        bar->triggerAction(QScrollBar::SliderPageStepAdd);
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (auto* button = qobject_cast<QAbstractButton*>(window()->focusWidget())) {
            button->click();
            return true;
        }
        return false;
    default:
        return false;
    }
}

void AgentUsagePopoverView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(QRect(0, contentTop() - lineHeight, width(), lineHeight),
                     kit::color(kit::ColorRole::line));
}

} // namespace vellmark
