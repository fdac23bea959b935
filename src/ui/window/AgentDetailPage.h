#pragma once

#include "presentation/AgentPageContent.h"
#include "presentation/AgentUIActions.h"
#include "ui/window/WindowPage.h"

#include <vector>

namespace vellmark {

namespace kit {
class LogoTile;
class Notice;
class Pill;
class ScrollArea;
class Segments;
} // namespace kit
class AgentWindowCard;
class FailureNotice;
class ReadingCard;

/// One agent: a card per quota window with its course, and one about how it is read, two a row
/// where there is room.
class AgentDetailPage : public WindowPage {
public:
    /// `actions` must outlive the page.
    AgentDetailPage(const AgentUIActions& program, const AgentPageActions& actions,
                    QWidget* parent);

    void setContent(const AgentPageContent& content);
    std::vector<QWidget*> controls() const override;
    void pageShown() override;
    void scrollToTop() override;

protected:
    void arrange() override;

private:
    void beginAgent(const AgentProviderID& agent);
    void updateWindows(const AgentPageContent& content);
    void updateNotes(const std::vector<std::string>& notes);
    void arrangeHead();
    int arrangeNotices(int wide);
    int arrangeCards(int top, int wide);
    /// The least height of the row that begins with a card.
    int leastRowHeight(std::size_t first, std::size_t columns, int cardWidth) const;

    const AgentPageActions& actions_;
    AgentUIActions agentActions_;
    AgentProviderID agent_;
    kit::LogoTile* logo_;
    kit::Pill* health_;
    kit::Segments* range_;
    kit::ScrollArea* scroller_;
    QWidget* column_;
    FailureNotice* failure_;
    std::vector<kit::Notice*> notes_;
    std::vector<AgentWindowCard*> windows_;
    ReadingCard* reading_;
};

} // namespace vellmark
