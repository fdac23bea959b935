#pragma once

#include "presentation/AgentUIActions.h"
#include "presentation/PopoverContent.h"

#include <QWidget>

#include <vector>

namespace vellmark {

class AgentBlock;

/// The popover's overview: a block per agent. A block stays with its agent when agents come, go or
/// change places.
class OverviewList : public QWidget {
public:
    OverviewList(const AgentUIActions& actions, QWidget* parent);

    void setContent(const std::vector<AgentBlockContent>& agents);
    int wantedHeight() const;
    /// The controls in reading order.
    std::vector<QWidget*> controls() const;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void arrange();

    const AgentUIActions& actions_;
    std::vector<AgentBlock*> blocks_;
};

} // namespace vellmark
