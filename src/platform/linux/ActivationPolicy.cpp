#include "platform/ActivationPolicy.h"

namespace vellmark {

// A window of a Linux desktop has its entry in the task bar for as long as it is open, and is
// raised on its own: there is nothing to switch for the program as a whole.
void startInBackground() {}
void setActivationPolicy(ActivationPolicy) {}
void activateApplication() {}
void yieldActivation() {}

} // namespace vellmark
