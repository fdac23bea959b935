#pragma once

#include "presentation/SettingsPageContent.h"

namespace vellmark::samples {

/// The machine that the made-up settings are of; nothing is looked for on it.
Machine machine();

/// Everything is found, logged in and as it is without a choice.
SettingsPageState settings();
/// The page was just opened for the first time: nothing is known of the agents' programs.
SettingsPageState uncheckedSettings();
/// What can be wrong: a program is missing, nobody is logged in, a chosen program is gone, the
/// system has not yet allowed the start at login, and the last change is not on disk.
SettingsPageState unreadySettings();

} // namespace vellmark::samples
