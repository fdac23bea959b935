#pragma once

namespace vellmark {

/// How the program appears among the running applications.
enum class ActivationPolicy {
    accessory, ///< no Dock icon, no menu bar
    regular,
};

/// Does nothing where the system knows no such thing. Main thread.
void setActivationPolicy(ActivationPolicy policy);

/// Brings the program's windows before those of others.
void activateApplication();

} // namespace vellmark
