#pragma once

#include "store/LastSnapshots.h"

namespace vellmark {

class Preferences;
struct CommandContext;

/// Says on standard error that the settings cannot be read, when that is so.
void reportUnreadable(const Preferences& preferences, const CommandContext& context);

/// Says on standard error what cannot be read of the last readings.
void reportUnreadable(const LastSnapshots::Contents& contents, const CommandContext& context);

} // namespace vellmark
