#pragma once

#include "presentation/HistoryPageContent.h"
#include "ui/window/WindowPage.h"

#include <vector>

namespace vellmark {

namespace kit {
class Button;
class Notice;
class ScrollArea;
class Segments;
} // namespace kit
struct AgentUIActions;
class FiguresCard;
class HeatMapCard;
class HistoryChartCard;
class NoAgentsHint;

/// What was left over time: one agent's windows in a chart, when they are used, and what that comes
/// to.
class HistoryPage : public WindowPage {
public:
    HistoryPage(const AgentUIActions& program, const HistoryPageActions& actions, QWidget* parent);
    ~HistoryPage() override;

    void setContent(const HistoryPageContent& content);
    std::vector<QWidget*> controls() const override;
    void pageHidden() override;
    void scrollToTop() override;
    HistoryChartCard* chartCard() const { return chart_; }
    HeatMapCard* heatCard() const { return heat_; }

protected:
    void arrange() override;

private:
    const AgentUIActions& program_;
    const HistoryPageActions& actions_;
    std::vector<AgentProviderID> agentIDs_;
    kit::Button* export_;
    kit::ScrollArea* scroller_;
    QWidget* column_;
    kit::Notice* note_;
    kit::Segments* agents_;
    kit::Segments* ranges_;
    HistoryChartCard* chart_;
    HeatMapCard* heat_;
    FiguresCard* figures_;
    NoAgentsHint* noAgents_;
};

} // namespace vellmark
