#include "ui/window/AgentMainWindowView.h"

#include "ui/kit/Theme.h"
#include "ui/window/OverviewPage.h"
#include "ui/window/Sidebar.h"

#include <QAbstractButton>
#include <QKeyEvent>
#include <QPainter>

namespace vellmark {

namespace {

bool hasView(const AgentPage& page) {
    return page.kind == AgentPage::Kind::overview || page.kind == AgentPage::Kind::provider;
}

/// Only the entries whose pages there are, and no section that would stand empty.
std::vector<SidebarItem> shownItems(const std::vector<SidebarItem>& items) {
    std::vector<SidebarItem> shown;
    for (const SidebarItem& item : items) {
        if (item.isSection && !shown.empty() && shown.back().isSection) {
            shown.pop_back();
        }
        if (item.isSection || hasView(item.page)) {
            shown.push_back(item);
        }
    }
    if (!shown.empty() && shown.back().isSection) {
        shown.pop_back();
    }
    return shown;
}

} // namespace

AgentMainWindowView::AgentMainWindowView(AgentUIActions actions, AgentNavigationState& navigation,
                                         QWidget* parent)
    : QWidget(parent), actions_(std::move(actions)), navigation_(navigation),
      sidebar_(new Sidebar(this)), overview_(new OverviewPage(actions_, this)) {
    setMinimumSize(leastSize);
    resize(firstSize);
    sidebar_->onSelect = [this](const AgentPage& page) {
        navigation_.select(page);
        showSelection();
    };
}

void AgentMainWindowView::setContent(const std::vector<SidebarItem>& sidebar,
                                     const OverviewContent& overview) {
    sidebar_->setItems(shownItems(sidebar));
    overview_->setContent(overview);
    std::vector<QWidget*> controls = sidebar_->controls();
    for (QWidget* control : overview_->controls()) {
        controls.push_back(control);
    }
    for (std::size_t index = 1; index < controls.size(); ++index) {
        setTabOrder(controls[index - 1], controls[index]);
    }
}

void AgentMainWindowView::showSelection() {
    const AgentPage& page = navigation_.selection();
    sidebar_->setSelection(hasView(page) ? page : AgentPage::of(AgentPage::Kind::overview));
    if (page.kind == AgentPage::Kind::provider) {
        overview_->showAgent(page.providerID);
    } else {
        overview_->scrollToTop();
    }
}

void AgentMainWindowView::setTopInset(int inset) {
    sidebar_->setTopInset(inset);
}

void AgentMainWindowView::keyPressEvent(QKeyEvent* event) {
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    auto* focused = qobject_cast<QAbstractButton*>(window()->focusWidget());
    if (event->modifiers() == Qt::ControlModifier && event->key() == Qt::Key_R) {
        actions_.refresh();
    } else if (isReturn && focused != nullptr) {
        focused->click();
    } else {
        QWidget::keyPressEvent(event);
    }
}

void AgentMainWindowView::resizeEvent(QResizeEvent* /*event*/) {
    sidebar_->setGeometry(0, 0, Sidebar::sidebarWidth, height());
    overview_->setGeometry(Sidebar::sidebarWidth, 0, width() - Sidebar::sidebarWidth, height());
}

void AgentMainWindowView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(rect(), kit::color(kit::ColorRole::window));
}

} // namespace vellmark
