#include "ui/window/AgentMainWindowView.h"

#include "ui/Conversions.h"
#include "ui/kit/Button.h"
#include "ui/kit/FocusRing.h"
#include "ui/kit/Theme.h"
#include "ui/window/Sidebar.h"
#include "ui/window/WindowPage.h"
#include "ui/window/WindowPages.h"

#include <QAbstractButton>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
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
    connect(sidebar_->menuButton(), &QAbstractButton::clicked, this,
            [this] { actions_.openMenu(); });
}

void AgentMainWindowView::setContent(const MainWindowContent& content) {
    sidebar_->setSpokenName(qString(content.sidebarName));
    sidebar_->setItems(content.sidebar);
    sidebar_->setSelection(content.page);
    sidebar_->setMenuButton(content.menuButton);
    WindowPage& page = pageFor(content);
    setPageContent(page, content.content);
    page.setAccessibleName(page.title());
    if (&page != page_ || content.page != shown_) {
        shown_ = content.page;
        turnTo(page);
    }
    orderTabs();
}

WindowPage& AgentMainWindowView::pageFor(const MainWindowContent& content) {
    WindowPage*& page = pages_[content.page.kind];
    if (page == nullptr) {
        page = makePage(content.page.kind, actions_, this);
    }
    return *page;
}

void AgentMainWindowView::turnTo(WindowPage& page) {
    WindowPage* former = std::exchange(page_, &page);
    arrange();
    page.show();
    page.scrollToTop();
    if (former != nullptr && former != &page) {
        QWidget* focused = focusWidget();
        if (focused != nullptr && former->isAncestorOf(focused)) {
            formerFocus_[former] = focused;
            // Left alone the keyboard would go wherever the next control happens to be.
            if (QWidget* next = firstControl(page)) {
                next->setFocus(kit::FocusRing::isAnyShown() ? Qt::ShortcutFocusReason
                                                            : Qt::OtherFocusReason);
            }
        }
        former->hide();
        former->pageHidden();
    }
    page.pageShown();
}

/// What had the keyboard when the page was last shown, else its first control.
QWidget* AgentMainWindowView::firstControl(WindowPage& page) const {
    const auto takesKeyboard = [&page](const QWidget* control) {
        return control != nullptr && control->isVisibleTo(&page) && control->isEnabled() &&
               (control->focusPolicy() & Qt::TabFocus) != 0;
    };
    const auto former = formerFocus_.find(&page);
    if (former != formerFocus_.end() && takesKeyboard(former->second)) {
        return former->second;
    }
    const std::vector<QWidget*> controls = page.controls();
    const auto first = std::ranges::find_if(controls, takesKeyboard);
    return first == controls.end() ? sidebar_->selectedEntry() : *first;
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
    const Qt::KeyboardModifiers modifiers = event->modifiers() & ~Qt::KeypadModifier;
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    auto* focused = qobject_cast<QAbstractButton*>(window()->focusWidget());
    if (handleNavigationKey(*event) ||
        (modifiers == Qt::ControlModifier && handleCommandKey(event->key()))) {
        return;
    }
    if (event->key() == Qt::Key_F6) {
        changeSide();
    } else if (isReturn && modifiers == Qt::NoModifier && focused != nullptr) {
        focused->click();
    } else {
        QWidget::keyPressEvent(event);
    }
}

bool AgentMainWindowView::handleCommandKey(int key) {
    if (key >= Qt::Key_1 && key <= Qt::Key_9) {
        sidebar_->press(key - Qt::Key_1);
        return true;
    }
    if (key == Qt::Key_R) {
        actions_.program.refresh();
        return true;
    }
    return false;
}

bool AgentMainWindowView::handleNavigationKey(QKeyEvent& event) {
    // Where Alt and an arrow is not the system's own way back, Command and an arrow is meant too.
    const bool usesAlt = QKeySequence::keyBindings(QKeySequence::Back)
                             .contains(QKeySequence(Qt::ALT | Qt::Key_Left));
    const auto isArrow = [&](int key) {
        return event.key() == key && (event.modifiers() & ~Qt::KeypadModifier) ==
                                         (usesAlt ? Qt::AltModifier : Qt::ControlModifier);
    };
    if (isArrow(Qt::Key_Left) || event.matches(QKeySequence::Back) || event.key() == Qt::Key_Back) {
        navigation_.goBack();
        return true;
    }
    if (isArrow(Qt::Key_Right) || event.matches(QKeySequence::Forward) ||
        event.key() == Qt::Key_Forward) {
        navigation_.goForward();
        return true;
    }
    return false;
}

void AgentMainWindowView::changeSide() {
    const QWidget* focused = focusWidget();
    const bool isInPage = page_ != nullptr && focused != nullptr && page_->isAncestorOf(focused);
    if (page_ != nullptr && isInPage) {
        formerFocus_[page_] = focusWidget();
    }
    QWidget* next = isInPage || page_ == nullptr ? sidebar_->selectedEntry() : firstControl(*page_);
    if (next != nullptr) {
        next->setFocus(Qt::ShortcutFocusReason);
    }
}

void AgentMainWindowView::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::BackButton) {
        navigation_.goBack();
    } else if (event->button() == Qt::ForwardButton) {
        navigation_.goForward();
    } else {
        QWidget::mousePressEvent(event);
    }
}

QRect AgentMainWindowView::menuAnchor() const {
    const QWidget& button = *sidebar_->menuButton();
    return {button.mapToGlobal(QPoint(0, 0)), button.size()};
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
