#pragma once

#include "presentation/AgentBlockContent.h"
#include "presentation/AgentUIActions.h"
#include "ui/kit/Notice.h"

#include <optional>

namespace vellmark {

/// Why an agent could not be read, with a button that leads out of it where there is a way. Hides
/// itself without a failure.
class FailureNotice : public kit::Notice {
public:
    /// `actions` must outlive the notice.
    FailureNotice(const AgentUIActions& actions, QWidget* parent);
    void setContent(const std::optional<FailureContent>& failure);
    /// The button, when there is one.
    QWidget* wayOutButton() const;

private:
    void takeWayOut() const;

    const AgentUIActions& actions_;
    AgentProviderID agent_;
    WayOut wayOut_ = WayOut::none;
};

} // namespace vellmark
