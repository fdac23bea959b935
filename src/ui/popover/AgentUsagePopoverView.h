#pragma once

#include "presentation/AgentUIActions.h"
#include "presentation/PopoverContent.h"

#include <QWidget>

#include <array>
#include <functional>

namespace vellmark {

namespace kit {
class ScrollArea;
}
class AgentTabView;
class NoAgentsHint;
class OverviewList;
class PopoverFooter;
class PopoverHeader;
class PopoverTabStrip;

/// Everything inside the popover: head, tabs, what the chosen tab shows, foot. Shows the content
/// that it is given and decides nothing; values change in place. Main thread.
///
/// Keys: Control (on macOS Command) with 1 to 9 chooses a tab, with R refreshes; Return presses the
/// control that has the focus. While none has it, left and right go from tab to tab, up and down
/// scroll; on a button they lead to its neighbour.
class AgentUsagePopoverView : public QWidget {
public:
    static constexpr int viewWidth = 430;
    static constexpr int leastContentHeight = 80;
    static constexpr int mostContentHeight = 504;
    /// The most that `wantedHeight` is ever.
    static const int tallest;

    explicit AgentUsagePopoverView(AgentUIActions actions, QWidget* parent = nullptr);

    void setContent(PopoverContent content);
    const PopoverContent& content() const { return content_; }
    /// Shows the first line again.
    void scrollToTop();

    int wantedHeight() const;

    /// The user chose a tab; it is shown already.
    std::function<void(const PopoverTab&)> onSelectTab;
    /// `wantedHeight` is another than before.
    std::function<void()> onHeightChange;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void selectTab(const PopoverTab& tab);
    /// Shows the page of the selected tab.
    void showPage();
    std::array<QWidget*, 3> pages() const;
    int pageHeight() const;
    int contentTop() const;
    void arrange();
    void orderTabStops();
    bool handleCommandKey(int key);
    bool handlePlainKey(int key);

    AgentUIActions actions_;
    PopoverContent content_;
    int lastWantedHeight_ = 0;
    PopoverHeader* header_;
    PopoverTabStrip* tabStrip_;
    kit::ScrollArea* scroller_;
    QWidget* pages_;
    OverviewList* overview_;
    AgentTabView* agentTab_;
    NoAgentsHint* noAgents_;
    PopoverFooter* footer_;
};

} // namespace vellmark
