#pragma once

#include "presentation/SetupAssistantContent.h"
#include "text/Localization.h"

namespace vellmark::samples {

/// Where the assistant is on a machine on which Codex is ready, Claude not logged in to, and
/// Antigravity not installed.
SetupAssistantState setup(SetupStep step, const Localization& words);
/// The tools before the first answer.
SetupAssistantState checkingSetup(const Localization& words);
/// One script runs, the window of another is about to come.
SetupAssistantState runningSetup(const Localization& words);
/// A cancelled login and a download that was refused, with Homebrew as the other way.
SetupAssistantState failedSetup(const Localization& words);
/// Windows that were closed, and a login that cannot be told.
SetupAssistantState closedSetup(const Localization& words);
/// No terminal to be found; no zsh.
SetupAssistantState setupWithoutTerminal(const Localization& words);
SetupAssistantState setupWithoutShell(const Localization& words);
/// Nobody is wanted.
SetupAssistantState setupOfNobody(const Localization& words);
/// Everything is ready.
SetupAssistantState finishedSetup(const Localization& words);

} // namespace vellmark::samples
