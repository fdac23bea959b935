#include "presentation/UsageVerdict.h"

#include "presentation/AgentBlockContent.h"
#include "presentation/AgentStanding.h"
#include "text/Formatting.h"

#include <algorithm>
#include <set>
#include <vector>

namespace vellmark {
namespace {

bool isLoading(const AgentUsageSnapshot& snapshot) {
    return snapshot.source == SnapshotSource::loading && !snapshot.error;
}

bool hasFigures(const AgentUsageSnapshot& snapshot) {
    return !snapshot.windows.empty() || !snapshot.balances.empty();
}

/// An agent of which something is known, if only that it cannot be read.
struct KnownAgent {
    const AgentUsageSnapshot* snapshot;
    AgentStanding standing;
};

std::vector<KnownAgent> knownAgents(const UsageState& state, Instant now) {
    std::vector<KnownAgent> agents;
    for (const AgentUsageSnapshot& snapshot : state.snapshots) {
        if (!isLoading(snapshot)) {
            agents.push_back({&snapshot, standingOf(snapshot, state, now)});
        }
    }
    return agents;
}

/// The age of what is shown where all of it is old; empty else.
std::string commonAgeText(const std::vector<KnownAgent>& agents, Instant now,
                          const Localization& words) {
    const KnownAgent* oldest = nullptr;
    for (const KnownAgent& agent : agents) {
        if (!hasFigures(*agent.snapshot)) {
            continue;
        }
        if (!agent.standing.isOld) {
            return {};
        }
        if (!oldest || agent.standing.readAt < oldest->standing.readAt) {
            oldest = &agent;
        }
    }
    return oldest ? ageText(*oldest->snapshot, oldest->standing, now, words) : std::string();
}

/// Agents of which the same is to be said.
struct Phrase {
    /// A text with an agent's name; `key`.several is one with two numbers.
    std::string_view key;
    std::vector<const KnownAgent*> agents;
};

bool isUnread(const KnownAgent& agent) {
    return agent.snapshot->error.has_value();
}

/// What is to be said of the agents, the worst first. Of an agent that presses and could not be
/// read the age of its figures says so, unless that is the case with all of them.
std::vector<Phrase> phrasesOf(const std::vector<KnownAgent>& agents) {
    Phrase critical{"popover.status.critical", {}};
    Phrase attention{"popover.status.attention", {}};
    Phrase unreadable{"popover.status.unreadable", {}};
    Phrase due{"popover.status.due", {}};
    const bool areAllUnread = std::ranges::all_of(agents, isUnread);
    for (const KnownAgent& agent : agents) {
        const UsageHealth grade = agent.standing.health;
        const bool presses = badgeOf(grade).has_value();
        if (presses) {
            (grade == UsageHealth::critical ? critical : attention).agents.push_back(&agent);
        }
        const bool isDue = agent.standing.isDue();
        if (isUnread(agent) ? areAllUnread || !presses
                            : grade == UsageHealth::unavailable && !isDue) {
            unreadable.agents.push_back(&agent);
        } else if (isDue) {
            due.agents.push_back(&agent);
        }
    }
    std::vector<Phrase> phrases{critical, attention, unreadable, due};
    std::erase_if(phrases, [](const Phrase& phrase) { return phrase.agents.empty(); });
    return phrases;
}

/// How phrases are worded in a line.
struct PhraseWording {
    std::size_t allAgents = 0;
    /// Each old agent's age; off where the line tells the age of all.
    bool tellsAges = true;
    AgentNames names = AgentNames::brief;
};

/// One agent by its name, several by their number: the line stays short however many there are.
std::string phraseText(const Phrase& phrase, const PhraseWording& wording, Instant now,
                       const Localization& words) {
    const std::size_t count = phrase.agents.size();
    if (count == 1) {
        const KnownAgent& agent = *phrase.agents.front();
        const AgentProviderID& id = agent.snapshot->id;
        std::string text = words.format(
            phrase.key,
            {wording.names == AgentNames::full ? agentName(id, words) : agentShortName(id, words)});
        // What is said of an agent that cannot be read is of now, not of its figures.
        const std::string age = wording.tellsAges && badgeOf(agent.standing.health)
                                    ? briefAgeText(*agent.snapshot, agent.standing, now, words)
                                    : std::string();
        return age.empty() ? text : words.format("popover.status.aged", {std::move(text), age});
    }
    return words.format(
        std::string(phrase.key) + ".several",
        {static_cast<std::int64_t>(count), static_cast<std::int64_t>(wording.allAgents)});
}

/// The first phrase, and how many more agents the others are about.
std::string briefVerdictText(const std::vector<Phrase>& phrases, const PhraseWording& wording,
                             Instant now, const Localization& words) {
    std::set<AgentProviderID> concerned;
    for (const Phrase& phrase : phrases) {
        for (const KnownAgent* agent : phrase.agents) {
            concerned.insert(agent->snapshot->id);
        }
    }
    std::string text = phraseText(phrases.front(), wording, now, words);
    const auto others = static_cast<std::int64_t>(concerned.size() - phrases.front().agents.size());
    if (others == 0) {
        return text;
    }
    return words.takesSingular(others)
               ? words.format("popover.status.andOther", {std::move(text)})
               : words.format("popover.status.andOthers", {std::move(text), others});
}

bool everythingLasts(const UsageState& state, const std::vector<KnownAgent>& agents) {
    return std::ranges::all_of(agents, [&](const KnownAgent& agent) {
        const AgentUsageSnapshot& snapshot = *agent.snapshot;
        for (std::size_t index = 0; index < snapshot.windows.size(); ++index) {
            const UsageWindow& window = snapshot.windows[index];
            const auto outlook = forecast(window, agent.standing.windows[index].judgedAt,
                                          state.recentPointsOf(snapshot.id, window.id));
            if (outlook && outlook->emptyAt) {
                return false;
            }
        }
        return true;
    });
}

/// The verdict without any time. `tellsAges`: with the age of each agent whose figures are old.
VerdictLine verdict(const UsageState& state, const std::vector<KnownAgent>& agents, bool tellsAges,
                    Instant now, const Localization& words, AgentNames names) {
    const auto same = [](const std::string& text) { return VerdictLine{text, text}; };
    if (state.snapshots.empty()) {
        return same(words.text("popover.status.noAgents"));
    }
    if (agents.empty()) {
        return same(
            words.text(state.isRefreshing ? "summary.refreshing" : "popover.status.notRead"));
    }
    const std::vector<Phrase> phrases = phrasesOf(agents);
    if (phrases.empty()) {
        return same(words.text(everythingLasts(state, agents) ? "popover.status.lasts"
                                                              : "popover.status.healthy"));
    }
    const PhraseWording wording{state.snapshots.size(), tellsAges, names};
    std::string text;
    for (const Phrase& phrase : phrases) {
        text += (text.empty() ? "" : ", ") + phraseText(phrase, wording, now, words);
    }
    return {text, briefVerdictText(phrases, wording, now, words)};
}

/// Says of `text` as of when it is: the moment of the last refresh, or the age of figures that are
/// all old. What could not be read was not "read" at any moment.
std::string withTime(const std::string& text, const UsageState& state,
                     const std::vector<KnownAgent>& agents, Instant now,
                     const Localization& words) {
    if (const std::string age = commonAgeText(agents, now, words); !age.empty()) {
        return words.format("popover.status.withAge", {text, age});
    }
    if (agents.empty() || !state.lastRefreshCompletedAt) {
        return text;
    }
    const Instant readAt = *state.lastRefreshCompletedAt;
    const char* key = "popover.status.readOn";
    if (std::ranges::all_of(agents, isUnread)) {
        key = "popover.status.triedAt";
    } else if (std::ranges::any_of(agents, isUnread)) {
        key = "popover.status.asOf";
    } else if (isSameDay(readAt, now, words)) {
        key = "popover.status.readAt";
    }
    return words.format(key, {text, instantText(readAt, now, words)});
}

} // namespace

std::string verdictText(const UsageState& state, Instant now, const Localization& words,
                        AgentNames names) {
    const std::vector<KnownAgent> agents = knownAgents(state, now);
    const std::string age = commonAgeText(agents, now, words);
    const std::string text = verdict(state, agents, age.empty(), now, words, names).text;
    return age.empty() ? text : words.format("popover.status.withAge", {text, age});
}

VerdictLine verdictLine(const UsageState& state, Instant now, const Localization& words,
                        AgentNames names) {
    const auto loading = std::ranges::count_if(state.snapshots, isLoading);
    if (loading > 0 && state.isRefreshing) {
        const auto all = static_cast<std::int64_t>(state.snapshots.size());
        const std::string text = words.format("popover.status.progress", {all - loading, all});
        return {text, text};
    }
    const std::vector<KnownAgent> agents = knownAgents(state, now);
    const bool tellsAges = commonAgeText(agents, now, words).empty();
    const VerdictLine line = verdict(state, agents, tellsAges, now, words, names);
    return {withTime(line.text, state, agents, now, words),
            withTime(line.briefText, state, agents, now, words)};
}

std::string overallStatusText(const UsageState& state, Instant now, const Localization& words) {
    if (state.isRefreshing) {
        return words.text("summary.refreshing");
    }
    if (state.snapshots.empty()) {
        return words.text("summary.noAgents");
    }
    const UsageHealth worst = worstHealth(state, now);
    bool isDue = worst == UsageHealth::unavailable;
    std::string concerned;
    for (const AgentUsageSnapshot& snapshot : state.snapshots) {
        const AgentStanding standing = standingOf(snapshot, state, now);
        if (standing.health != worst) {
            continue;
        }
        isDue = isDue && standing.isDue();
        concerned += (concerned.empty() ? "" : ", ") + agentShortName(snapshot.id, words);
    }
    switch (worst) {
    case UsageHealth::critical:
        return words.format("summary.critical", {concerned});
    case UsageHealth::attention:
        return words.format("summary.attention", {concerned});
    case UsageHealth::unavailable:
        return words.format(isDue ? "summary.due" : "summary.unavailable", {concerned});
    case UsageHealth::healthy:
        break;
    }
    return words.text("summary.healthy");
}

UsageHealth worstHealth(const UsageState& state, Instant now) {
    if (state.snapshots.empty()) {
        return UsageHealth::unavailable;
    }
    UsageHealth worst = UsageHealth::healthy;
    for (const AgentUsageSnapshot& snapshot : state.snapshots) {
        worst = worse(worst, standingOf(snapshot, state, now).health);
    }
    return worst;
}

} // namespace vellmark
