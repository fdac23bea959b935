#pragma once

#include "presentation/AgentPageContent.h"

#include <QWidget>

#include <vector>

namespace vellmark {

namespace kit {
class Button;
class Label;
} // namespace kit
class BalanceRow;
class ReadingFactRow;

/// The last card of an agent's page: its balances, how and when it was read, and its place among
/// the others.
class ReadingCard : public QWidget {
public:
    /// `actions` must outlive the card.
    ReadingCard(const AgentPageActions& actions, QWidget* parent);

    void setContent(const AgentProviderID& agent, const ReadingCardContent& content);
    int heightForWidth(int width) const override;
    /// The controls in reading order, hidden ones among them.
    std::vector<QWidget*> controls() const;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void enableMoves();
    int readingTop() const;
    int factsBottom() const;
    int phasesTextHeight(int width) const;
    int labelWidth() const;
    void arrange();
    void arrangeFoot();
    void paintPhases(QPainter& painter) const;

    const AgentPageActions& actions_;
    AgentProviderID agent_;
    ReadingCardContent content_;
    kit::Label* balancesTitle_;
    std::vector<BalanceRow*> balances_;
    kit::Label* title_;
    kit::Button* recheck_;
    std::vector<ReadingFactRow*> facts_;
    kit::Label* phasesText_;
    kit::Label* orderTitle_;
    kit::Label* position_;
    kit::Button* earlier_;
    kit::Button* later_;
    kit::Button* switchOff_;
};

} // namespace vellmark
