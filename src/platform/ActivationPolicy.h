#pragma once

namespace vellmark {

/// How the program appears among the running applications.
enum class ActivationPolicy {
    accessory, ///< no Dock icon, no menu bar
    regular,
};

/// Before the toolkit starts: launching takes the keyboard from nobody, as the start at login
/// demands. Does nothing where a start never does.
void startInBackground();

/// Does nothing where the system knows no such thing. Becoming an accessory gives the keyboard back
/// to the program that had it before. Main thread.
void setActivationPolicy(ActivationPolicy policy);

/// Brings the program's windows before those of others.
void activateApplication();

/// Gives the keyboard back when nothing of the program is on screen any more; for systems on which
/// a program without windows can still be in front.
void yieldActivation();

} // namespace vellmark
