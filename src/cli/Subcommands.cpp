#include "cli/Subcommands.h"

namespace vellmark {

std::vector<std::unique_ptr<Subcommand>> allSubcommands() {
    std::vector<std::unique_ptr<Subcommand>> all;
    all.push_back(makeUsageCommand());
    all.push_back(makeStatusCommand());
    all.push_back(makeWatchCommand());
    all.push_back(makeStatuslineCommand());
    all.push_back(makeHistoryCommand());
    all.push_back(makeMetricsCommand());
    all.push_back(makeLogCommand());
    all.push_back(makeAgentsCommand());
    all.push_back(makeSettingsCommand());
    all.push_back(makeInspectCommand());
    all.push_back(makeSetupCommand());
    all.push_back(makeSetupScriptCommand());
    all.push_back(makeReportCommand());
    all.push_back(makeRedactCommand());
    all.push_back(makeCompletionsCommand());
    all.push_back(makeCompleteCommand());
    all.push_back(makeManCommand());
    return all;
}

} // namespace vellmark
