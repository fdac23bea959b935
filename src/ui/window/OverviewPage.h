#pragma once

#include "presentation/AgentUIActions.h"
#include "presentation/MainWindowContent.h"

#include <QWidget>

#include <vector>

namespace vellmark {

namespace kit {
class Notice;
class ScrollArea;
} // namespace kit
class AgentSummaryCard;
class NoAgentsHint;
class PageHead;

/// The main window's overview: what is worst in one sentence, and a card per agent.
class OverviewPage : public QWidget {
public:
    OverviewPage(const AgentUIActions& actions, QWidget* parent);

    void setContent(const OverviewContent& content);
    /// Shows the first line again.
    void scrollToTop();
    /// Brings an agent's card into view and gives it the keyboard.
    void showAgent(const AgentProviderID& id);
    /// The controls in reading order.
    std::vector<QWidget*> controls() const;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void arrange();

    const AgentUIActions& actions_;
    PageHead* head_;
    kit::ScrollArea* scroller_;
    QWidget* column_;
    kit::Notice* verdict_;
    kit::Notice* setupHint_;
    std::vector<AgentSummaryCard*> cards_;
    NoAgentsHint* noAgents_;
};

} // namespace vellmark
