#pragma once

#include "presentation/AgentUIActions.h"
#include "presentation/OverviewPageContent.h"
#include "ui/window/WindowPage.h"

#include <vector>

namespace vellmark {

namespace kit {
class Notice;
class ScrollArea;
} // namespace kit
class AgentSummaryCard;
class NoAgentsHint;

/// The main window's overview: what is worst in one sentence, why files are not written, and a card
/// per agent.
class OverviewPage : public WindowPage {
public:
    OverviewPage(const AgentUIActions& actions, QWidget* parent);

    void setContent(const OverviewPageContent& content);
    std::vector<QWidget*> controls() const override;
    void scrollToTop() override;

protected:
    void arrange() override;

private:
    const AgentUIActions& actions_;
    kit::ScrollArea* scroller_;
    QWidget* column_;
    kit::Notice* verdict_;
    kit::Notice* storage_;
    std::vector<AgentSummaryCard*> cards_;
    NoAgentsHint* noAgents_;
};

} // namespace vellmark
