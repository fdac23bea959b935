#pragma once

#include "cli/Subcommand.h"

#include <memory>
#include <vector>

namespace vellmark {

std::unique_ptr<Subcommand> makeAgentsCommand();
std::unique_ptr<Subcommand> makeCompleteCommand();
std::unique_ptr<Subcommand> makeCompletionsCommand();
std::unique_ptr<Subcommand> makeHistoryCommand();
std::unique_ptr<Subcommand> makeInspectCommand();
std::unique_ptr<Subcommand> makeLogCommand();
std::unique_ptr<Subcommand> makeManCommand();
std::unique_ptr<Subcommand> makeMetricsCommand();
std::unique_ptr<Subcommand> makeRedactCommand();
std::unique_ptr<Subcommand> makeReportCommand();
std::unique_ptr<Subcommand> makeSettingsCommand();
std::unique_ptr<Subcommand> makeSetupCommand();
std::unique_ptr<Subcommand> makeSetupScriptCommand();
std::unique_ptr<Subcommand> makeStatusCommand();
std::unique_ptr<Subcommand> makeStatuslineCommand();
std::unique_ptr<Subcommand> makeUsageCommand();
std::unique_ptr<Subcommand> makeWatchCommand();

/// All of them, in the order of the help.
std::vector<std::unique_ptr<Subcommand>> allSubcommands();

} // namespace vellmark
