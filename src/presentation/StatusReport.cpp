#include "presentation/StatusReport.h"

#include "model/UsageTexts.h"
#include "presentation/UsageVerdict.h"
#include "store/ReadingTime.h"
#include "text/Formatting.h"
#include "text/TerminalText.h"

#include <algorithm>

namespace vellmark {
namespace {

/// The agents that were chosen, and nothing of the others.
UsageState chosenAgents(const UsageState& state, const StatusChoice& choice) {
    UsageState chosen = state;
    if (choice.agent) {
        std::erase_if(chosen.snapshots, [&](const AgentUsageSnapshot& snapshot) {
            return snapshot.id != *choice.agent;
        });
    }
    return chosen;
}

/// Also a window of which nothing can be used now, where there is no other.
std::optional<PressingWindow> bindingWindow(const UsageState& state, const StatusChoice& choice,
                                            Instant now) {
    const auto accepts = [&](const AgentUsageSnapshot&, const UsageWindow& window) {
        return !choice.window || window.id == *choice.window;
    };
    if (auto pressing = mostPressingWindow(state, now, accepts)) {
        return pressing;
    }
    for (const AgentUsageSnapshot& snapshot : state.snapshots) {
        const AgentStanding standing = standingOf(snapshot, state, now);
        for (std::size_t index = 0; index < snapshot.windows.size(); ++index) {
            if (accepts(snapshot, snapshot.windows[index])) {
                return PressingWindow{&snapshot, &snapshot.windows[index], standing.windows[index]};
            }
        }
    }
    return std::nullopt;
}

/// The agents' own health, or that of the chosen windows.
UsageHealth chosenHealth(const UsageState& state, const StatusChoice& choice, Instant now) {
    if (!choice.window) {
        return worstHealth(state, now);
    }
    std::optional<UsageHealth> worst;
    for (const AgentUsageSnapshot& snapshot : state.snapshots) {
        const AgentStanding standing = standingOf(snapshot, state, now);
        for (std::size_t index = 0; index < snapshot.windows.size(); ++index) {
            if (snapshot.windows[index].id == *choice.window) {
                const UsageHealth one = standing.windows[index].health;
                worst = worst ? worse(*worst, one) : one;
            }
        }
    }
    return worst.value_or(UsageHealth::unavailable);
}

Seconds ageOf(Instant readAt, Instant now) {
    return std::max(now - readAt, Seconds(0));
}

/// The age of figures that two readings should have renewed, or that the last one could not.
std::string toldAge(const AgentUsageSnapshot& snapshot, Instant readAt, Seconds interval,
                    Instant now, const Localization& words) {
    const Seconds age = ageOf(readAt, now);
    const bool isTold = age > 2 * interval || (snapshot.error && age >= oneMinute);
    return isTold ? ageText(snapshot, readAt, now, words) : std::string();
}

StatusWindow statusWindow(const PressingWindow& binding, const UsageState& state, Seconds interval,
                          Instant now, const Localization& words) {
    using Kind = WindowStanding::Kind;
    const AgentUsageSnapshot& snapshot = *binding.snapshot;
    const UsageWindow& window = *binding.window;
    const WindowStanding& standing = binding.standing;
    const auto recent = state.recentPointsOf(snapshot.id, window.id);
    const UsageRowContent row =
        usageRowContent(window, standing, recent, state.firstFigure, now, words);
    StatusWindow told{.agent = snapshot.id,
                      .windowID = window.id,
                      .agentName = agentName(snapshot.id, words),
                      .shortAgentName = agentShortName(snapshot.id, words),
                      .account = singleLine(snapshot.accountLabel.value_or("")),
                      .plan = singleLine(planText(snapshot)),
                      .label = singleLine(row.fullLabel),
                      .shortLabel = singleLine(row.label),
                      .usedPercent = window.usedPercent,
                      .leftPercent = std::clamp(remainingPercent(window), 0.0, 100.0),
                      .used = usageFigureText(window, FirstFigure::used, words),
                      .left = usageFigureText(window, FirstFigure::left, words),
                      .figure = row.figure,
                      .value = row.value,
                      .health = standing.health,
                      .reset = singleLine(row.reset),
                      .resetsAt = window.resetsAt,
                      .outlook = row.outlook,
                      .readAt = standing.readAt,
                      .age = ageOf(standing.readAt, now),
                      .ageText = toldAge(snapshot, standing.readAt, interval, now, words)};
    if (window.resetsAt && *window.resetsAt > now) {
        told.resetIn = durationText(*window.resetsAt - now, words, SpanForm::alone);
        told.resetAt = instantText(*window.resetsAt, now, words);
    }
    if (standing.kind == Kind::due || standing.kind == Kind::held) {
        told.obstacle = told.reset;
    } else if (standing.kind == Kind::counts) {
        told.forecast = forecast(window, standing.judgedAt, recent);
    }
    return told;
}

} // namespace

StatusReport statusReport(const UsageState& state, const StatusChoice& choice, Seconds interval,
                          Instant now, const Localization& words) {
    const UsageState chosen = chosenAgents(state, choice);
    StatusReport report{.health = chosenHealth(chosen, choice, now)};
    report.healthText = healthText(report.health, words);
    report.refreshTitle = words.text("menu.statusItem.refresh");
    report.openTitle = words.text("menu.statusItem.open");
    if (const auto binding = bindingWindow(chosen, choice, now)) {
        report.window = statusWindow(*binding, chosen, interval, now, words);
    }
    report.verdict =
        choice.window ? singleLine(windowLabel(*choice.window, words)) + " · " + report.healthText
                      : singleLine(verdictText(chosen, now, words, AgentNames::full));
    if (!choice.listsAgents) {
        return report;
    }
    report.item = statusItemContent(chosen, now, words);
    for (const AgentUsageSnapshot& snapshot : chosen.snapshots) {
        AgentBlockContent block =
            agentBlockContent(snapshot, chosen, now, words,
                              chosen.isRefreshing ? "popover.loadingValues" : "health.unavailable");
        if (choice.window) {
            std::erase_if(block.rows, [&](const UsageRowContent& row) {
                return row.windowID != *choice.window;
            });
        }
        const bool isKnown = !snapshot.windows.empty() || !snapshot.balances.empty();
        report.ages.push_back(isKnown ? std::optional(ageOf(readingTimeOf(chosen, snapshot), now))
                                      : std::nullopt);
        report.agents.push_back(std::move(block));
    }
    return report;
}

} // namespace vellmark
