#include "app/DisplayLoss.h"

namespace vellmark {

// A session whose window server ends takes its programs with it.
DisplayLoss::DisplayLoss(std::function<void()> /*onLoss*/) {}
DisplayLoss::~DisplayLoss() = default;

} // namespace vellmark
