#pragma once

#include "presentation/AgentPage.h"
#include "presentation/AgentUIActions.h"
#include "presentation/MainWindowContent.h"

#include <QWidget>

#include <vector>

namespace vellmark {

class OverviewPage;
class Sidebar;

/// The inside of the main window: sidebar at the left, the selected page at the right. Main thread.
///
/// A page that there is no view for has no entry in the sidebar either; selecting it from elsewhere
/// shows the overview, for an agent with its card in view. Control (on macOS Command) with R
/// refreshes, Return presses the control that has the focus.
class AgentMainWindowView : public QWidget {
public:
    static constexpr QSize firstSize{1120, 760};
    static constexpr QSize leastSize{1040, 680};

    /// `navigation` must outlive the view.
    AgentMainWindowView(AgentUIActions actions, AgentNavigationState& navigation,
                        QWidget* parent = nullptr);

    void setContent(const std::vector<SidebarItem>& sidebar, const OverviewContent& overview);
    /// Shows the page that the navigation selects; to be called when that changed from outside.
    void showSelection();
    /// Room for the title bar's buttons, where the window's content reaches under them.
    void setTopInset(int inset);

    QSize sizeHint() const override { return firstSize; }

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    AgentUIActions actions_;
    AgentNavigationState& navigation_;
    Sidebar* sidebar_;
    OverviewPage* overview_;
};

} // namespace vellmark
