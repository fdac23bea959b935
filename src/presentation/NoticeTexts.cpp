#include "presentation/NoticeTexts.h"

#include "model/UsageTexts.h"
#include "presentation/AgentBlockContent.h"
#include "presentation/AgentStanding.h"
#include "presentation/UsageRowContent.h"
#include "probes/ProviderRegistry.h"
#include "store/ReadingTime.h"
#include "text/Formatting.h"
#include "text/JoinedText.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

namespace vellmark {
namespace {

constexpr std::size_t mostLines = 5;
/// So many alternatives are named to what is used up.
constexpr std::size_t mostAlternatives = 2;

/// What a notice is made of; each part may be empty but the title.
struct Parts {
    std::string title;
    /// The figure and the moment.
    std::string fact;
    /// What to do.
    std::string more;
    /// What stands behind the title among other notices.
    std::string brief;
};

/// What a notice is about, as the state has it now.
struct Subject {
    const Notice& notice;
    const UsageState& state;
    const AgentUsageSnapshot& snapshot;
    /// Null where the notice is about the agent.
    const UsageWindow* window;
    Instant now;
    const Localization& words;
};

std::string nameOf(const Subject& subject) {
    return joined({agentShortName(subject.snapshot.id, subject.words),
                   subject.window ? windowLabel(*subject.window, subject.words, true) : ""},
                  factSeparator);
}

std::string valueText(const UsageWindow& window, const Subject& subject) {
    return usageValueText(window, subject.state.firstFigure, subject.words);
}

/// "Resets 4:15 PM"; empty without a time.
std::string resetMoment(const Subject& subject) {
    const UsageWindow* window = subject.window;
    return window && window->resetsAt
               ? subject.words.format("usage.reset.at",
                                      {instantText(*window->resetsAt, subject.now, subject.words)})
               : std::string();
}

// What still works

/// "Week 64% left".
std::string figureText(const UsageWindow& window, const Subject& subject) {
    return windowLabel(window, subject.words, true) + " " + valueText(window, subject);
}

/// The windows of which something is left that nothing keeps from being used; of those of one
/// quota the scarcest.
std::vector<const UsageWindow*> usableWindows(const AgentUsageSnapshot& snapshot, Instant now) {
    std::vector<const UsageWindow*> usable;
    if (isUsedUp(snapshot)) {
        return usable;
    }
    for (const UsageWindow& window : snapshot.windows) {
        const bool isBlocked =
            isDue(window, now) || std::ranges::any_of(snapshot.windows, [&](const auto& other) {
                return isUsedUp(other) && !isDue(other, now) && blocks(other, window);
            });
        if (!isBlocked) {
            usable.push_back(&window);
        }
    }
    std::ranges::stable_sort(usable, {},
                             [](const auto* window) { return remainingPercent(*window); });
    std::vector<const UsageWindow*> scarcest;
    for (const UsageWindow* window : usable) {
        if (std::ranges::none_of(scarcest, [&](const auto* other) {
                return blocks(*other, *window) && blocks(*window, *other);
            })) {
            scarcest.push_back(window);
        }
    }
    return scarcest;
}

std::vector<std::string> alternativesWithin(const Subject& subject) {
    std::vector<std::string> names;
    for (const UsageWindow* window : usableWindows(subject.snapshot, subject.now)) {
        const bool isOfOthers = subject.window && blocks(*window, *subject.window);
        const std::string figure = figureText(*window, subject);
        names.push_back(isOfOthers ? subject.words.format("notice.otherModels", {figure}) : figure);
    }
    return names;
}

/// Those of which most is left first.
std::vector<std::string> otherAgents(const Subject& subject) {
    std::vector<std::pair<double, std::string>> agents;
    for (const AgentUsageSnapshot& other : subject.state.snapshots) {
        const auto usable = usableWindows(other, subject.now);
        if (other.id != subject.snapshot.id && other.source == SnapshotSource::live &&
            !other.error && !usable.empty()) {
            agents.emplace_back(remainingPercent(*usable.front()),
                                agentShortName(other.id, subject.words) + " · " +
                                    figureText(*usable.front(), subject));
        }
    }
    std::ranges::stable_sort(agents, std::greater(), &std::pair<double, std::string>::first);
    std::vector<std::string> names;
    for (auto& [left, name] : agents) {
        names.push_back(std::move(name));
    }
    return names;
}

std::string stillWorks(const Subject& subject) {
    const auto& allowance = subject.snapshot.allowance;
    if (allowance && allowance->ordinaryUsageAllowed == true && !isUsedUp(subject.snapshot)) {
        return subject.words.text("notice.usedUp.credits");
    }
    std::vector<std::string> names = alternativesWithin(subject);
    if (names.empty()) {
        names = otherAgents(subject);
    }
    names.resize(std::min(names.size(), mostAlternatives));
    return names.empty() ? std::string()
                         : subject.words.format("notice.usedUp.stillWorks", {joined(names, ", ")});
}

// The kinds

std::string title(std::string_view key, const Subject& subject) {
    return subject.words.format(key, {nameOf(subject)});
}

Parts usedUp(const Subject& subject) {
    Parts parts{.title = title("notice.usedUp", subject), .more = stillWorks(subject)};
    const UsageWindow* window = subject.window;
    if (!window && isUsedUp(subject.snapshot)) {
        parts.fact = refusalText(subject.snapshot, subject.now, subject.words);
    } else if (window && window->resetsAt) {
        parts.fact = subject.words.format(
            "notice.usedUp.back", {instantText(*window->resetsAt, subject.now, subject.words)});
    } else {
        parts.fact = subject.words.text("popover.reset.unknown");
    }
    parts.brief = parts.fact;
    return parts;
}

Parts runsOut(const Subject& subject) {
    Parts parts{.title = title("notice.runsOut", subject)};
    std::string empty;
    if (subject.window) {
        // As of the reading, which is what was judged.
        const auto outlook = forecast(
            *subject.window, readingTimeOf(subject.state, subject.snapshot, *subject.window),
            subject.state.recentPointsOf(subject.snapshot.id, subject.window->id));
        if (outlook && outlook->emptyAt) {
            empty =
                subject.words.format("notice.runsOut.empty",
                                     {instantText(*outlook->emptyAt, subject.now, subject.words)});
        }
        parts.brief = valueText(*subject.window, subject);
        parts.fact = joined({parts.brief, empty, resetMoment(subject)}, factSeparator);
    }
    return parts;
}

Parts critical(const Subject& subject) {
    return {.title = subject.words.format(
                "notice.critical",
                {nameOf(subject), subject.window ? valueText(*subject.window, subject) : ""}),
            .fact = joined({healthText(UsageHealth::critical, subject.words), resetMoment(subject)},
                           factSeparator),
            .more = {},
            .brief = {}};
}

Parts begunAnew(std::string_view key, const Subject& subject) {
    const std::string value = subject.window ? valueText(*subject.window, subject) : "";
    return {.title = title(key, subject),
            .fact = joined({value, resetMoment(subject)}, factSeparator),
            .more = {},
            .brief = value};
}

Parts expires(const Subject& subject) {
    Parts parts{.title = title("notice.expires", subject)};
    const auto& allowance = subject.snapshot.allowance;
    if (!allowance || !allowance->bankedResetExpiresAt) {
        return parts;
    }
    parts.brief = subject.words.format(
        "notice.expires.when",
        {instantText(*allowance->bankedResetExpiresAt, subject.now, subject.words)});
    const std::int64_t count = allowance->bankedResets.value_or(1);
    parts.fact =
        joined({parts.brief,
                count > 1 ? subject.words.format("notice.expires.count", {count}) : std::string()},
               factSeparator);
    return parts;
}

std::string_view wayOutKey(WayOut way) {
    switch (way) {
    case WayOut::logIn:
        return "notice.unread.logIn";
    case WayOut::install:
        return "notice.unread.install";
    case WayOut::openSettings:
        return "notice.unread.openSettings";
    case WayOut::readAgain:
    case WayOut::update:
    case WayOut::none:
        break;
    }
    return "notice.unread.readAgain";
}

Parts unread(const Subject& subject) {
    Parts parts{.title = title("notice.unread", subject)};
    if (const auto& error = subject.snapshot.error) {
        parts.fact = error->message(subject.words);
        parts.more = subject.words.text(wayOutKey(wayOutOf(subject.snapshot.id, error->kind())));
    }
    return parts;
}

Parts partsOf(const Subject& subject) {
    switch (subject.notice.kind) {
    case NoticeKind::usedUp:
        return usedUp(subject);
    case NoticeKind::runsOut:
        return runsOut(subject);
    case NoticeKind::critical:
        return critical(subject);
    case NoticeKind::back:
        return begunAnew("notice.back", subject);
    case NoticeKind::reset:
        return begunAnew("notice.reset", subject);
    case NoticeKind::expires:
        return expires(subject);
    case NoticeKind::unread:
        return unread(subject);
    }
    return {};
}

/// "3 notices: Claude, Codex".
std::string severalTitle(const NoticePost& post, const Localization& words) {
    std::vector<std::string> names;
    for (const Notice& notice : post.notices) {
        const std::string name = agentShortName(notice.agent, words);
        if (std::ranges::find(names, name) == names.end()) {
            names.push_back(name);
        }
    }
    return words.format("notice.several",
                        {static_cast<std::int64_t>(post.notices.size()), joined(names, ", ")});
}

} // namespace

WayOut setupOf(const NoticePost& post, const UsageState& state) {
    if (post.notices.size() != 1 || post.notices.front().kind != NoticeKind::unread) {
        return WayOut::none;
    }
    const auto snapshot =
        std::ranges::find(state.snapshots, post.notices.front().agent, &AgentUsageSnapshot::id);
    if (snapshot == state.snapshots.end() || !snapshot->error) {
        return WayOut::none;
    }
    const WayOut way = wayOutOf(snapshot->id, snapshot->error->kind());
    return way == WayOut::install || way == WayOut::logIn ? way : WayOut::none;
}

NoticeText noticeText(const NoticePost& post, const UsageState& state, Instant now,
                      const Localization& words) {
    std::vector<Parts> all;
    for (const Notice& notice : post.notices) {
        const auto snapshot =
            std::ranges::find(state.snapshots, notice.agent, &AgentUsageSnapshot::id);
        if (snapshot != state.snapshots.end()) {
            const UsageWindow* window =
                notice.windowID.empty() ? nullptr : state.window(notice.agent, notice.windowID);
            all.push_back(partsOf({notice, state, *snapshot, window, now, words}));
        }
    }
    if (all.size() == 1) {
        return {all.front().title, joined({all.front().fact, all.front().more}, "\n")};
    }
    std::vector<std::string> lines;
    for (std::size_t index = 0; index < std::min(all.size(), mostLines); ++index) {
        lines.push_back(joined({all[index].title, all[index].brief}, factSeparator));
    }
    if (all.size() > mostLines) {
        lines.push_back(
            words.format("notice.more", {static_cast<std::int64_t>(all.size() - mostLines)}));
    }
    return {severalTitle(post, words), joined(lines, "\n")};
}

} // namespace vellmark
