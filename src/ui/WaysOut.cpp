#include "ui/WaysOut.h"

#include "ui/Conversions.h"

namespace vellmark {

kit::Notice::Look failureLook(const FailureContent& failure) {
    kit::Notice::Look look;
    look.words = qString(failure.reason);
    look.buttonWords = qString(failure.buttonTitle);
    return look;
}

void takeWayOut(WayOut wayOut, const AgentUIActions& actions) {
    switch (wayOut) {
    case WayOut::readAgain:
        actions.refresh();
        break;
    case WayOut::logIn:
    case WayOut::install:
        actions.startSetup();
        break;
    case WayOut::openSettings:
        actions.openSettings();
        break;
    case WayOut::none:
        break;
    }
}

} // namespace vellmark
