#pragma once

#include "presentation/AgentPage.h"
#include "presentation/MainWindowActions.h"
#include "presentation/MainWindowContent.h"

#include <QWidget>

#include <map>

namespace vellmark {

class Sidebar;
class WindowPage;

/// The inside of the main window: sidebar at the left, the selected page at the right. Main thread.
///
/// A page is made when it is shown for the first time. Control (on macOS Command) with R refreshes,
/// Return presses the control that has the focus.
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
    /// The page that is shown; null before the first content.
    WindowPage* page() const { return page_; }
    /// Room for the title bar's buttons, where the window's content reaches under them.
    void setTopInset(int inset);

    QSize sizeHint() const override { return firstSize; }

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    WindowPage& pageOfKind(AgentPage::Kind kind);
    void turnTo(WindowPage& page);
    void orderTabs();
    void arrange();

    MainWindowActions actions_;
    AgentNavigationState& navigation_;
    Sidebar* sidebar_;
    std::map<AgentPage::Kind, WindowPage*> pages_;
    WindowPage* page_ = nullptr;
    AgentPage shown_;
};

} // namespace vellmark
