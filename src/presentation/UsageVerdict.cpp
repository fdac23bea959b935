#include "presentation/UsageVerdict.h"

#include "presentation/AgentBlockContent.h"
#include "text/Formatting.h"

#include <algorithm>
#include <vector>

namespace vellmark {
namespace {

using Agents = std::vector<AgentProviderID>;

bool isLoading(const AgentUsageSnapshot& snapshot) {
    return snapshot.source == SnapshotSource::loading && !snapshot.error;
}

/// One agent by its name, several by their number: the line stays short however many there are.
/// `key` is a text with the name, `key`.several one with two numbers.
void addPhrase(std::string& text, std::string_view key, const Agents& agents, std::size_t all,
               const Localization& words) {
    if (agents.empty())
        return;
    if (!text.empty())
        text += ", ";
    if (agents.size() == 1)
        text += words.format(key, {agentShortName(agents.front(), words)});
    else
        text +=
            words.format(std::string(key) + ".several", {static_cast<std::int64_t>(agents.size()),
                                                         static_cast<std::int64_t>(all)});
}

bool everythingLasts(const UsageState& state, Instant now) {
    return std::all_of(
        state.snapshots.begin(), state.snapshots.end(), [&](const AgentUsageSnapshot& snapshot) {
            return std::all_of(
                snapshot.windows.begin(), snapshot.windows.end(), [&](const UsageWindow& window) {
                    const auto recent = state.recentPoints.find({snapshot.id, window.id});
                    const auto outlook = recent != state.recentPoints.end()
                                             ? forecast(window, now, recent->second)
                                             : forecast(window, now);
                    return !outlook || !outlook->emptyAt;
                });
        });
}

} // namespace

std::string verdictText(const UsageState& state, Instant now, const Localization& words) {
    if (state.snapshots.empty())
        return words.text("popover.status.noAgents");
    Agents critical;
    Agents attention;
    Agents unreadable;
    std::size_t known = 0;
    for (const AgentUsageSnapshot& snapshot : state.snapshots) {
        if (isLoading(snapshot))
            continue;
        ++known;
        const UsageHealth grade = health(snapshot, now);
        if (grade == UsageHealth::critical)
            critical.push_back(snapshot.id);
        else if (grade == UsageHealth::attention)
            attention.push_back(snapshot.id);
        if (snapshot.error || grade == UsageHealth::unavailable)
            unreadable.push_back(snapshot.id);
    }
    if (known == 0)
        return words.text("popover.status.notRead");

    std::string text;
    const std::size_t all = state.snapshots.size();
    addPhrase(text, "popover.status.critical", critical, all, words);
    addPhrase(text, "popover.status.attention", attention, all, words);
    addPhrase(text, "popover.status.unreadable", unreadable, all, words);
    if (!text.empty())
        return text;
    return words.text(everythingLasts(state, now) ? "popover.status.lasts"
                                                  : "popover.status.healthy");
}

std::string statusLineText(const UsageState& state, Instant now, const Localization& words) {
    const auto loading = std::count_if(state.snapshots.begin(), state.snapshots.end(), isLoading);
    if (loading > 0 && state.isRefreshing) {
        const auto all = static_cast<std::int64_t>(state.snapshots.size());
        return words.format("popover.status.progress", {all - loading, all});
    }
    std::string text = verdictText(state, now, words);
    if (state.snapshots.empty() || !state.lastRefreshCompletedAt)
        return text;
    const Instant readAt = *state.lastRefreshCompletedAt;
    const std::string time = timeText(readAt, words);
    const std::string moment = instantText(readAt, now, words);
    const bool isToday = moment == time;
    return words.format(isToday ? "popover.status.readAt" : "popover.status.readOn",
                        {std::move(text), isToday ? time : moment});
}

std::string overallStatusText(const UsageState& state, Instant now, const Localization& words) {
    if (state.isRefreshing)
        return words.text("summary.refreshing");
    if (state.snapshots.empty())
        return words.text("summary.noAgents");
    const UsageHealth worst = worstHealth(state, now);
    std::string concerned;
    for (const AgentUsageSnapshot& snapshot : state.snapshots) {
        if (health(snapshot, now) == worst)
            concerned += (concerned.empty() ? "" : ", ") + agentShortName(snapshot.id, words);
    }
    switch (worst) {
    case UsageHealth::critical:
        return words.format("summary.critical", {concerned});
    case UsageHealth::attention:
        return words.format("summary.attention", {concerned});
    case UsageHealth::unavailable:
        return words.format("summary.unavailable", {concerned});
    case UsageHealth::healthy:
        break;
    }
    return words.text("summary.healthy");
}

UsageHealth worstHealth(const UsageState& state, Instant now) {
    if (state.snapshots.empty())
        return UsageHealth::unavailable;
    UsageHealth worst = UsageHealth::healthy;
    for (const AgentUsageSnapshot& snapshot : state.snapshots)
        worst = worse(worst, health(snapshot, now));
    return worst;
}

} // namespace vellmark
