#pragma once

#include "presentation/AgentBlockContent.h"
#include "presentation/AgentUIActions.h"
#include "ui/kit/Notice.h"

namespace vellmark {

/// The notice of a failed reading.
kit::Notice::Look failureLook(const FailureContent& failure);

/// Does what the button of a failure promises.
void takeWayOut(WayOut wayOut, const AgentUIActions& actions);

} // namespace vellmark
