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
    /// `room`: the height beyond which it would have to scroll.
    OverviewList(const AgentUIActions& actions, int room, QWidget* parent);

    void setContent(const std::vector<AgentBlockContent>& agents);
    int wantedHeight() const;
    /// The controls in reading order.
    std::vector<QWidget*> controls() const;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void arrange();
    void setDense(bool isDense);

    const AgentUIActions& actions_;
    int room_;
    std::vector<AgentBlock*> blocks_;
};

} // namespace vellmark
