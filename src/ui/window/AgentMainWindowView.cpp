#include "ui/window/AgentMainWindowView.h"

#include "ui/kit/Theme.h"
#include "ui/window/Sidebar.h"
#include "ui/window/WindowPage.h"
#include "ui/window/WindowPages.h"

#include <QAbstractButton>
#include <QKeyEvent>
#include <QPainter>

#include <utility>
#include <vector>

namespace vellmark {

AgentMainWindowView::AgentMainWindowView(MainWindowActions actions,
                                         AgentNavigationState& navigation, QWidget* parent)
    : QWidget(parent), actions_(std::move(actions)), navigation_(navigation),
      sidebar_(new Sidebar(this)) {
    setMinimumSize(leastSize);
    resize(firstSize);
    sidebar_->onSelect = [this](const AgentPage& page) {
        navigation_.select(page);
        showBeginning();
    };
}

void AgentMainWindowView::setContent(const MainWindowContent& content) {
    sidebar_->setItems(content.sidebar);
    sidebar_->setSelection(content.page);
    WindowPage& page = pageOfKind(content.page.kind);
    setPageContent(page, content.content);
    if (&page != page_ || content.page != shown_) {
        shown_ = content.page;
        turnTo(page);
    }
    orderTabs();
}

WindowPage& AgentMainWindowView::pageOfKind(AgentPage::Kind kind) {
    WindowPage*& page = pages_[kind];
    if (page == nullptr) {
        page = makePage(kind, actions_, this);
    }
    return *page;
}

void AgentMainWindowView::turnTo(WindowPage& page) {
    WindowPage* former = std::exchange(page_, &page);
    arrange();
    page.show();
    if (former != nullptr && former != &page) {
        former->hide();
        former->pageHidden();
    }
    page.scrollToTop();
    page.pageShown();
}

void AgentMainWindowView::orderTabs() {
    std::vector<QWidget*> controls = sidebar_->controls();
    for (QWidget* control : page_->controls()) {
        controls.push_back(control);
    }
    for (std::size_t index = 1; index < controls.size(); ++index) {
        setTabOrder(controls[index - 1], controls[index]);
    }
}

void AgentMainWindowView::showBeginning() {
    if (page_ != nullptr) {
        page_->scrollToTop();
    }
}

void AgentMainWindowView::setTopInset(int inset) {
    sidebar_->setTopInset(inset);
}

void AgentMainWindowView::keyPressEvent(QKeyEvent* event) {
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    auto* focused = qobject_cast<QAbstractButton*>(window()->focusWidget());
    if (event->modifiers() == Qt::ControlModifier && event->key() == Qt::Key_R) {
        actions_.program.refresh();
    } else if (isReturn && focused != nullptr) {
        focused->click();
    } else {
        QWidget::keyPressEvent(event);
    }
}

void AgentMainWindowView::resizeEvent(QResizeEvent* /*event*/) {
    arrange();
}

void AgentMainWindowView::arrange() {
    sidebar_->setGeometry(0, 0, Sidebar::sidebarWidth, height());
    if (page_ != nullptr) {
        page_->setGeometry(Sidebar::sidebarWidth, 0, width() - Sidebar::sidebarWidth, height());
    }
}

void AgentMainWindowView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(rect(), kit::color(kit::ColorRole::window));
}

} // namespace vellmark
