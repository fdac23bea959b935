#include "presentation/UsageVerdict.h"

#include "presentation/AgentBlockContent.h"
#include "text/Formatting.h"

#include <algorithm>
#include <set>
#include <vector>

namespace vellmark {
namespace {

using Agents = std::vector<AgentProviderID>;

bool isLoading(const AgentUsageSnapshot& snapshot) {
    return snapshot.source == SnapshotSource::loading && !snapshot.error;
}

/// Agents of which the same is to be said.
struct Phrase {
    /// A text with an agent's name; `key`.several is one with two numbers.
    std::string_view key;
    Agents agents;
};

/// One agent by its name, several by their number: the line stays short however many there are.
std::string phraseText(const Phrase& phrase, std::size_t all, const Localization& words) {
    if (phrase.agents.size() == 1)
        return words.format(phrase.key, {agentShortName(phrase.agents.front(), words)});
    return words.format(
        std::string(phrase.key) + ".several",
        {static_cast<std::int64_t>(phrase.agents.size()), static_cast<std::int64_t>(all)});
}

/// The first phrase, and how many more agents the others are about.
std::string briefVerdictText(const std::vector<Phrase>& phrases, std::size_t all,
                             const Localization& words) {
    std::set<AgentProviderID> concerned;
    for (const Phrase& phrase : phrases)
        concerned.insert(phrase.agents.begin(), phrase.agents.end());
    const std::size_t others = concerned.size() - phrases.front().agents.size();
    std::string text = phraseText(phrases.front(), all, words);
    return others == 0 ? text
                       : words.format("popover.status.andOthers",
                                      {std::move(text), static_cast<std::int64_t>(others)});
}

bool everythingLasts(const UsageState& state, Instant now) {
    return std::all_of(
        state.snapshots.begin(), state.snapshots.end(), [&](const AgentUsageSnapshot& snapshot) {
            return std::all_of(
                snapshot.windows.begin(), snapshot.windows.end(), [&](const UsageWindow& window) {
                    const auto outlook =
                        forecast(window, now, state.recentPointsOf(snapshot.id, window.id));
                    return !outlook || !outlook->emptyAt;
                });
        });
}

StatusLine verdict(const UsageState& state, Instant now, const Localization& words) {
    const auto same = [](const std::string& text) { return StatusLine{text, text}; };
    if (state.snapshots.empty())
        return same(words.text("popover.status.noAgents"));
    Phrase critical{"popover.status.critical", {}};
    Phrase attention{"popover.status.attention", {}};
    Phrase unreadable{"popover.status.unreadable", {}};
    std::size_t known = 0;
    for (const AgentUsageSnapshot& snapshot : state.snapshots) {
        if (isLoading(snapshot))
            continue;
        ++known;
        const UsageHealth grade = health(snapshot, now);
        if (grade == UsageHealth::critical)
            critical.agents.push_back(snapshot.id);
        else if (grade == UsageHealth::attention)
            attention.agents.push_back(snapshot.id);
        if (snapshot.error || grade == UsageHealth::unavailable)
            unreadable.agents.push_back(snapshot.id);
    }
    if (known == 0)
        return same(words.text("popover.status.notRead"));

    std::vector<Phrase> phrases{critical, attention, unreadable};
    std::erase_if(phrases, [](const Phrase& phrase) { return phrase.agents.empty(); });
    if (phrases.empty())
        return same(words.text(everythingLasts(state, now) ? "popover.status.lasts"
                                                           : "popover.status.healthy"));
    const std::size_t all = state.snapshots.size();
    std::string text;
    for (const Phrase& phrase : phrases)
        text += (text.empty() ? "" : ", ") + phraseText(phrase, all, words);
    return {text, briefVerdictText(phrases, all, words)};
}

} // namespace

std::string verdictText(const UsageState& state, Instant now, const Localization& words) {
    return verdict(state, now, words).text;
}

StatusLine statusLine(const UsageState& state, Instant now, const Localization& words) {
    const auto loading = std::count_if(state.snapshots.begin(), state.snapshots.end(), isLoading);
    if (loading > 0 && state.isRefreshing) {
        const auto all = static_cast<std::int64_t>(state.snapshots.size());
        const std::string text = words.format("popover.status.progress", {all - loading, all});
        return {text, text};
    }
    const StatusLine line = verdict(state, now, words);
    if (state.snapshots.empty() || !state.lastRefreshCompletedAt)
        return line;
    const Instant readAt = *state.lastRefreshCompletedAt;
    const std::string moment = instantText(readAt, now, words);
    const char* key =
        isSameDay(readAt, now, words) ? "popover.status.readAt" : "popover.status.readOn";
    const auto withTime = [&](const std::string& text) {
        return words.format(key, {text, moment});
    };
    return {withTime(line.text), withTime(line.briefText)};
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
