#pragma once

#include "presentation/AgentPage.h"
#include "presentation/MainWindowActions.h"
#include "presentation/MainWindowContent.h"

#include <QPointer>
#include <QWidget>

#include <map>
#include <utility>

namespace vellmark {

class Sidebar;
class WindowPage;

/// The inside of the main window: sidebar at the left, the selected page at the right. Main thread.
///
/// A page is made when it is shown for the first time. Keys, where Control is Command on macOS:
/// Control with R refreshes, Control with 1 to 9 presses an entry of the sidebar, the system's keys
/// for back and forward and such buttons of the mouse go along the way that was taken, F6 goes from
/// the sidebar to the page and back, Return presses the control that has the focus.
class AgentMainWindowView : public QWidget {
public:
    static constexpr QSize firstSize{1120, 760};
    static constexpr QSize leastSize{1040, 680};

    /// `navigation` must outlive the view.
    AgentMainWindowView(MainWindowActions actions, AgentNavigationState& navigation,
                        QWidget* parent = nullptr);

    /// Shows the page that the content is of.
    void setContent(const MainWindowContent& content);
    /// Shows the first line of the page; to be called when it was chosen again.
    void showBeginning();
    /// Where the menu bar's contents open, on the screen.
    QRect menuAnchor() const;
    /// The page that is shown; null before the first content.
    WindowPage* page() const { return page_; }
    /// Room for the title bar's buttons, where the window's content reaches under them.
    void setTopInset(int inset);

    QSize sizeHint() const override { return firstSize; }

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    WindowPage& pageFor(const MainWindowContent& content);
    void turnTo(WindowPage& page);
    bool handleCommandKey(int key);
    bool handleNavigationKey(QKeyEvent& event);
    void changeSide();
    QWidget* firstControl(WindowPage& page) const;
    void orderTabs();
    void arrange();

    MainWindowActions actions_;
    AgentNavigationState& navigation_;
    Sidebar* sidebar_;
    /// Made when they are first shown.
    std::map<AgentPage::Kind, WindowPage*> pages_;
    WindowPage* page_ = nullptr;
    AgentPage shown_;
    /// Of each page, what had the keyboard when another took its place.
    std::map<const WindowPage*, QPointer<QWidget>> formerFocus_;
};

} // namespace vellmark
