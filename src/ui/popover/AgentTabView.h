#pragma once

#include "presentation/AgentUIActions.h"
#include "presentation/PopoverContent.h"

#include <QWidget>

#include <vector>

namespace vellmark {

namespace kit {
class Button;
class Label;
class LogoTile;
class Pill;
} // namespace kit
class BalanceRow;
class FailureNotice;
class UsageFigureRow;

/// The popover's tab of one agent: head, every window in large figures, balances, where the figures
/// come from.
class AgentTabView : public QWidget {
public:
    AgentTabView(const AgentUIActions& actions, QWidget* parent);

    void setContent(const AgentBlockContent& content, const ControlContent& openPage);
    int wantedHeight() const;
    /// The controls in reading order.
    std::vector<QWidget*> controls() const;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void arrange();
    void arrangeHead();

    AgentProviderID id_;
    int boneRows_ = 0;
    int bonesTop_ = 0;
    int wantedHeight_ = 0;
    /// Where lines run across, from the top.
    std::vector<int> lines_;
    kit::LogoTile* logo_;
    kit::Label* name_;
    kit::Label* account_;
    kit::Pill* health_;
    std::vector<UsageFigureRow*> rows_;
    FailureNotice* failure_;
    std::vector<BalanceRow*> balances_;
    kit::Label* source_;
    kit::Button* openPage_;
};

} // namespace vellmark
