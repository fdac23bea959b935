#include "ui/FailureNotice.h"

#include "ui/Conversions.h"
#include "ui/kit/Button.h"

namespace vellmark {

FailureNotice::FailureNotice(const AgentUIActions& actions, QWidget* parent)
    : kit::Notice(parent), actions_(actions) {
    onPress = [this] { takeWayOut(); };
}

void FailureNotice::setContent(const std::optional<FailureContent>& failure) {
    wayOut_ = failure ? failure->wayOut : WayOut::none;
    if (failure) {
        agent_ = failure->agent;
        Look look;
        look.words = qString(failure->reason);
        look.buttonWords = qString(failure->buttonTitle);
        setLook(look);
    }
    setVisible(failure.has_value());
}

QWidget* FailureNotice::wayOutButton() const {
    return wayOut_ != WayOut::none ? button() : nullptr;
}

void FailureNotice::takeWayOut() const {
    switch (wayOut_) {
    case WayOut::readAgain:
    case WayOut::update:
        actions_.refresh();
        break;
    case WayOut::logIn:
    case WayOut::install:
        actions_.setUpAgent(agent_);
        break;
    case WayOut::openSettings:
        actions_.openSettings();
        break;
    case WayOut::none:
        break;
    }
}

} // namespace vellmark
