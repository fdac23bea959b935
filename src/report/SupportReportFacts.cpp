#include "report/SupportReportFacts.h"

#include "platform/SystemFacts.h"
#include "platform/UserLocale.h"
#include "probes/AgentFacts.h"
#include "probes/ProviderRegistry.h"
#include "store/ActivityLines.h"
#include "store/ActivityLog.h"
#include "store/ActivityTexts.h"
#include "store/AgentSettings.h"
#include "store/LastSnapshots.h"
#include "text/Dates.h"
#include "text/SystemErrorText.h"
#include "text/TerminalText.h"

#include <algorithm>
#include <future>
#include <system_error>

namespace vellmark {
namespace {

/// "CH" of "de_CH".
std::string regionOf(const std::string& localeIdentifier) {
    const auto separator = localeIdentifier.find('_');
    return separator == std::string::npos ? std::string() : localeIdentifier.substr(separator + 1);
}

std::optional<Instant> lastSuccess(const AgentProviderID& id,
                                   const std::vector<AgentUsageSnapshot>& readings) {
    const auto found = std::ranges::find(readings, id, &AgentUsageSnapshot::id);
    return found == readings.end() ? std::nullopt : std::optional(found->updatedAt);
}

/// Each on its own, so that it is told of as soon as it has answered.
std::vector<AgentFacts> askAgents(const Machine& machine, const SupportReportGathering& gathering) {
    constexpr auto policy = std::launch::async | std::launch::deferred;
    std::vector<std::future<AgentFacts>> inquiries;
    for (const ProviderRegistration& registration : providerRegistry()) {
        inquiries.push_back(std::async(policy, [&machine, &gathering, registration] {
            AgentFacts facts = gatherAgentFacts(machine, {registration}).front();
            if (gathering.answered) {
                gathering.answered(facts);
            }
            return facts;
        }));
    }
    std::vector<AgentFacts> result;
    for (auto& inquiry : inquiries) {
        result.push_back(inquiry.get());
    }
    return result;
}

std::vector<SupportReportInput::Agent> gatherAgents(const Machine& machine,
                                                    const Localization& words,
                                                    const SupportReportGathering& gathering) {
    const auto readings = LastSnapshots(machine.lastSnapshotsFile()).read();
    const auto facts = askAgents(machine, gathering);
    const auto preferences = makePreferences(machine);
    const auto enabled = AgentSettings(*preferences, providerRegistry()).enabled();

    std::vector<SupportReportInput::Agent> agents;
    for (const AgentFacts& agent : facts) {
        SupportReportInput::Agent entry;
        entry.name = words.text(providerDescriptor(agent.id)->nameKey);
        entry.enabled = enabled.contains(agent.id);
        if (agent.toolPath) {
            entry.toolPath = agent.toolPath->string();
        }
        if (agent.toolVersion) {
            entry.toolVersion = singleLine(*agent.toolVersion);
        }
        entry.loggedIn = agent.loggedIn;
        entry.lastSuccess = lastSuccess(agent.id, readings);
        agents.push_back(std::move(entry));
    }
    return agents;
}

std::string recentActivity(const Machine& machine, const Localization& words, Instant now,
                           const SupportReportGathering& gathering) {
    const auto zone = words.timeZone();
    const auto since = now - ActivityLog::daysKept * oneDay;
    std::string text;
    const auto file = machine.activityLogFile();
    std::error_code error;
    auto entries = gathering.activity ? gathering.activity(since, zone, error)
                                      : ActivityLog(file).entries(since, zone, error);
    ActivityTexts::tell(entries, words);
    for (const ActivityEntry& entry : entries) {
        text += (text.empty() ? "" : "\n") + ActivityLines::text(entry, zone);
    }
    if (error) {
        text +=
            words.format("cli.error.unreadable", {file.string(), systemErrorText(error, words)});
    }
    return text;
}

} // namespace

SupportReportInput gatherSupportReport(const Machine& machine, const Localization& words,
                                       Instant now, const SupportReportGathering& gathering) {
    SupportReportInput input;
    const auto system = systemFacts();
    input.version = VELLMARK_VERSION;
    input.build = VELLMARK_BUILD;
    input.osVersion = system.osVersion;
    input.architecture = system.architecture;
    input.languageCode = words.languageCode();
    const auto region = regionOf(UserLocale::of(machine.environment).formatIdentifier);
    input.region = region.empty() ? words.text("report.none") : region;
    input.date = now;
    input.agents = gatherAgents(machine, words, gathering);
    if (!gathering.isCancelled || !gathering.isCancelled()) {
        input.logText = recentActivity(machine, words, now, gathering);
    }
    return input;
}

} // namespace vellmark
