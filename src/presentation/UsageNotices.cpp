#include "presentation/UsageNotices.h"

#include "model/UsageRules.h"
#include "presentation/AgentStanding.h"
#include "store/ReadingTime.h"

#include <algorithm>
#include <utility>

namespace vellmark {
namespace {

/// A clock that is moved by less was corrected, not set.
constexpr Seconds clockTolerance{60};
/// Agents tell a reset to the minute, and correct it: within these it is the same one.
constexpr Seconds leastResetSlack{5 * 60};
constexpr Seconds mostResetSlack{30 * 60};
/// A fall by this many points is a new period before the old one's end; less is rounding.
constexpr double periodFall = 5;
/// This much has to be left of what is called back within its period.
constexpr double backShare = 5;
/// What is no fall at all.
constexpr double leastUse = 1;

constexpr int settledReadings = 2;
/// Readings that lie closer together are one.
constexpr Seconds leastReadingPause{60};

constexpr Seconds unreadLimit{3600};
/// Timers are joined with others.
constexpr Seconds unreadSlack{60};
/// Two attempts are at most that far apart; what goes beyond it, nobody has tried.
constexpr Seconds longestAttemptPause{45 * 60};

constexpr Seconds expiryNotice{24 * 3600};
/// What was told goes on holding while figures and clocks waver.
constexpr Seconds expirySlack{3600};

constexpr const char* groupID = "several";

Seconds resetSlack(const UsageWindow& window) {
    const Seconds length(window.windowDurationMinutes.value_or(0) * 60);
    return std::clamp(length / 10, leastResetSlack, mostResetSlack);
}

bool isApart(Instant first, Instant second) {
    return second - first >= leastReadingPause || first - second >= leastReadingPause;
}

/// Whether a reading of the window belongs to another period than the one remembered.
/// `isClockSet`: what is over by the clock need not be.
bool isNewPeriod(const PeriodMemory& period, const UsageWindow& window, Instant readAt,
                 bool isClockSet) {
    const double fall = period.usedPercent - window.usedPercent;
    if (period.endsAt && *period.endsAt <= readAt) {
        const bool isLater =
            !window.resetsAt || *window.resetsAt > *period.endsAt + resetSlack(window);
        return isLater && (!isClockSet || fall >= leastUse);
    }
    return fall >= periodFall;
}

std::string idOf(const Notice& notice) {
    switch (notice.kind) {
    case NoticeKind::expires:
        return notice.agent.rawValue + "//expires";
    case NoticeKind::unread:
        return notice.agent.rawValue + "//unread";
    default:
        return notice.agent.rawValue + "/" + notice.windowID;
    }
}

const AgentUsageSnapshot* find(const UsageState& state, const AgentProviderID& id) {
    const auto found = std::ranges::find(state.snapshots, id, &AgentUsageSnapshot::id);
    return found == state.snapshots.end() ? nullptr : &*found;
}

/// That a quota is back counts, for an agent that says so, only when it does.
bool mayBeBack(const AgentUsageSnapshot& snapshot) {
    const auto& allowance = snapshot.allowance;
    if (snapshot.id == AgentProviderID::codex()) {
        return !isUsedUp(snapshot) && allowance && allowance->ordinaryUsageAllowed == true;
    }
    return !isUsedUp(snapshot);
}

/// The expiry of something in hand; absent where there is nothing to lose.
std::optional<Instant> expiryOf(const AgentUsageSnapshot& snapshot) {
    const auto& allowance = snapshot.allowance;
    return allowance && allowance->bankedResets.value_or(0) > 0 ? allowance->bankedResetExpiresAt
                                                                : std::nullopt;
}

bool isSameExpiry(const AgentMemory& agent, Instant expiry) {
    return agent.saidExpiry && *agent.saidExpiry - expiry < expirySlack &&
           expiry - *agent.saidExpiry < expirySlack;
}

} // namespace

bool canMute(const NoticePost& post) {
    return std::ranges::any_of(post.notices, [](const Notice& notice) {
        return notice.kind == NoticeKind::usedUp || notice.kind == NoticeKind::runsOut ||
               notice.kind == NoticeKind::critical;
    });
}

bool isQuiet(const NoticePost& post) {
    return std::ranges::all_of(
        post.notices, [](const Notice& notice) { return notice.kind == NoticeKind::reset; });
}

NoticeChanges UsageNotices::look(const UsageState& state, const NoticeSettings& settings,
                                 const NoticeMoment& moment) {
    lookAtClocks(moment);
    for (const AgentUsageSnapshot& snapshot : state.snapshots) {
        takeAttempt(snapshot, state, moment);
        takeFigures(snapshot, state);
    }
    forgetWhatIsNotWanted(settings);
    NoticeChanges changes;
    if (state.isRefreshing) {
        return changes;
    }
    std::vector<Notice> notices = due(state, settings, moment.now);
    changes.isWaiting = !notices.empty() && moment.isSilent;
    if (!notices.empty() && !moment.isSilent) {
        for (const Notice& notice : notices) {
            noteSaid(notice, state);
        }
        isChanged_ = true;
        changes.post = posted(std::move(notices), changes.closed);
    }
    std::erase_if(shown_, [&](const NoticePost& post) {
        const bool isOver = std::ranges::none_of(
            post.notices, [&](const Notice& notice) { return holds(notice, state, moment.now); });
        if (isOver) {
            changes.closed.push_back(post.id);
        }
        return isOver;
    });
    return changes;
}

void UsageNotices::systemDidWake() {
    for (auto& [id, agent] : agents_) {
        agent.readings = 0;
        agent.attempts = 0;
        agent.lastFailure.reset();
    }
}

void UsageNotices::lookAtClocks(const NoticeMoment& moment) {
    const Seconds offset = moment.now.time_since_epoch() - moment.continuous;
    if (clockOffset_ &&
        (offset - *clockOffset_ > clockTolerance || *clockOffset_ - offset > clockTolerance)) {
        for (auto& [id, agent] : agents_) {
            agent.isClockSet = true;
        }
    }
    clockOffset_ = offset;
}

// Readings

void UsageNotices::takeAttempt(const AgentUsageSnapshot& snapshot, const UsageState& state,
                               const NoticeMoment& moment) {
    const bool isFailure = snapshot.error.has_value();
    // A reading of the run before is shown as stale, without an error.
    if (!isFailure && snapshot.source != SnapshotSource::live) {
        return;
    }
    AgentWatch& agent = agents_[snapshot.id];
    const std::pair attempt(snapshot.updatedAt, isFailure);
    if (agent.lastAttempt == attempt) {
        return;
    }
    agent.lastAttempt = attempt;
    ++agent.attempts;
    isFailure ? takeFailure(snapshot, moment) : takeReading(snapshot, state);
}

void UsageNotices::takeFailure(const AgentUsageSnapshot& snapshot, const NoticeMoment& moment) {
    AgentWatch& watch = agents_[snapshot.id];
    if (watch.lastFailure) {
        memory_.agents[snapshot.id].unreadFor +=
            std::clamp(moment.continuous - *watch.lastFailure, Seconds(0), longestAttemptPause);
        isChanged_ = true;
    }
    watch.lastFailure = moment.continuous;
}

void UsageNotices::takeReading(const AgentUsageSnapshot& snapshot, const UsageState& state) {
    AgentWatch& watch = agents_[snapshot.id];
    ++watch.readings;
    watch.readAt = snapshot.updatedAt;
    watch.lastFailure.reset();
    if (AgentMemory& agent = memory_.agents[snapshot.id];
        agent.unreadFor > Seconds(0) || agent.saidUnread) {
        agent.unreadFor = Seconds(0);
        agent.saidUnread = false;
        isChanged_ = true;
    }
    for (const UsageWindow& window : snapshot.windows) {
        if (!window.readAt) {
            takeWindow(snapshot, window, state);
        }
    }
    takeRefusal(snapshot);
    watch.isClockSet = false;
    memory_.forgetOldest();
}

/// What an agent tells between its readings is newer than they are, and may come with each of its
/// answers: of what lies close together one counts.
void UsageNotices::takeFigures(const AgentUsageSnapshot& snapshot, const UsageState& state) {
    for (const UsageWindow& window : snapshot.windows) {
        if (!window.readAt || *window.readAt <= readingTimeOf(state, snapshot) ||
            windows_[{snapshot.id, window.id}].readAt == window.readAt) {
            continue;
        }
        AgentWatch& watch = agents_[snapshot.id];
        if (!watch.readAt || isApart(*watch.readAt, *window.readAt)) {
            watch.readAt = window.readAt;
            ++watch.readings;
        }
        takeWindow(snapshot, window, state);
    }
}

void UsageNotices::takeWindow(const AgentUsageSnapshot& snapshot, const UsageWindow& window,
                              const UsageState& state) {
    const WindowKey key(snapshot.id, window.id);
    const Instant readAt = window.readAt.value_or(snapshot.updatedAt);
    WindowWatch& watch = windows_[key];
    if (isDue(window, readAt)) {
        // The figures of a period that is over: they say nothing of this one.
        watch = WindowWatch();
        watch.readAt = readAt;
        watch.resetsAt = window.resetsAt;
        return;
    }
    watch.readAt = readAt;
    watch.resetsAt = window.resetsAt;
    const bool isFirst = !memory_.windows.contains(key);
    PeriodMemory& period = memory_.windows[key];
    const bool isNew =
        !isFirst && isNewPeriod(period, window, readAt, agents_[snapshot.id].isClockSet);
    if (isNew) {
        period.hasReset = period.usedPercent >= leastUse;
        period.said.clear();
        period.isMuted = false;
        watch.runsOutReadings = 0;
        watch.staysCritical = false;
        isChanged_ = true;
    }
    isChanged_ = isChanged_ || isFirst;
    if (isNew || window.resetsAt) {
        period.endsAt = window.resetsAt;
    }
    period.usedPercent = window.usedPercent;
    period.readAt = readAt;

    using Kind = WindowStanding::Kind;
    const AgentStanding standing = standingOf(snapshot, state, readAt);
    const auto index = static_cast<std::size_t>(&window - snapshot.windows.data());
    const Kind kind = standing.windows[index].kind;
    watch.isUsedUp = kind == Kind::usedUp;
    watch.isHeld = kind == Kind::held;
    watch.isUsable = kind == Kind::counts && !isUsedUp(snapshot) &&
                     std::ranges::none_of(snapshot.windows, [&](const UsageWindow& other) {
                         return isUsedUp(other) && !isDue(other, readAt) && blocks(other, window);
                     });
    watch.isCritical = kind == Kind::counts && severity(window, readAt) == Severity::critical;
    watch.staysCritical = watch.isCritical || (watch.staysCritical && kind == Kind::counts &&
                                               severity(window, readAt) != Severity::fine);
    const auto outlook = kind == Kind::counts
                             ? forecast(window, readAt, state.recentPointsOf(key.first, key.second))
                             : std::nullopt;
    const bool isMessage = window.readAt && watch.countedAt && !isApart(*watch.countedAt, readAt);
    const int count = isMessage ? 0 : 1;
    const bool runsOut = outlook && outlook->emptyAt;
    watch.runsOutReadings = runsOut ? watch.runsOutReadings + count : 0;
    watch.lastingReadings = runsOut ? 0 : watch.lastingReadings + count;
    if (count > 0) {
        watch.countedAt = readAt;
    }
    if (isUsedUp(window)) {
        isChanged_ = isChanged_ || !period.wasUsedUp || period.isBack;
        period.wasUsedUp = true;
        period.isBack = false;
    } else if (period.wasUsedUp && watch.isUsable && mayBeBack(snapshot) &&
               (isNew || remainingPercent(window) >= backShare)) {
        period.wasUsedUp = false;
        period.isBack = true;
        isChanged_ = true;
    }
}

/// An agent may refuse to work while none of its windows is used up.
void UsageNotices::takeRefusal(const AgentUsageSnapshot& snapshot) {
    const WindowKey key(snapshot.id, "");
    const bool isTold = std::ranges::any_of(snapshot.windows, [&](const UsageWindow& window) {
        const auto period = memory_.windows.find({snapshot.id, window.id});
        return period != memory_.windows.end() && period->second.wasUsedUp;
    });
    const bool refuses = isUsedUp(snapshot) && !isTold;
    WindowWatch& watch = windows_[key];
    watch.isUsedUp = refuses;
    watch.isUsable = !isUsedUp(snapshot);
    if (!refuses && !memory_.windows.contains(key)) {
        return;
    }
    PeriodMemory& period = memory_.windows[key];
    period.readAt = snapshot.updatedAt;
    if (refuses) {
        isChanged_ = isChanged_ || !period.wasUsedUp || period.isBack;
        period.wasUsedUp = true;
        period.isBack = false;
    } else if (period.wasUsedUp && mayBeBack(snapshot)) {
        // What each window says of its return says more.
        const bool isToldOfWindow =
            std::ranges::any_of(snapshot.windows, [&](const UsageWindow& window) {
                const auto other = memory_.windows.find({snapshot.id, window.id});
                return other != memory_.windows.end() && other->second.isBack;
            });
        period = PeriodMemory{.readAt = snapshot.updatedAt};
        period.isBack = !isToldOfWindow;
        isChanged_ = true;
    }
}

/// Otherwise a kind that is switched on tells of what is long past.
void UsageNotices::forgetWhatIsNotWanted(const NoticeSettings& settings) {
    for (auto& [key, period] : memory_.windows) {
        period.isBack = period.isBack && settings.tells(NoticeKind::back);
        period.hasReset = period.hasReset && settings.tells(NoticeKind::reset);
    }
}

// What is to be told

std::vector<Notice> UsageNotices::due(const UsageState& state, const NoticeSettings& settings,
                                      Instant now) {
    std::vector<Notice> notices;
    for (const AgentUsageSnapshot& snapshot : state.snapshots) {
        const auto watch = agents_.find(snapshot.id);
        if (watch == agents_.end()) {
            continue;
        }
        const bool isSettled = watch->second.attempts >= settledReadings;
        if (watch->second.readings >= settledReadings) {
            addWindows(notices, snapshot, state, settings, now);
        }
        if (isSettled && settings.tells(NoticeKind::expires) && isExpiryDue(snapshot, now)) {
            notices.push_back({NoticeKind::expires, snapshot.id, {}});
        }
        if (isSettled && settings.tells(NoticeKind::unread) && isUnreadDue(snapshot, state)) {
            notices.push_back({NoticeKind::unread, snapshot.id, {}});
        }
    }
    std::ranges::stable_sort(notices, {}, &Notice::kind);
    return notices;
}

void UsageNotices::addWindows(std::vector<Notice>& notices, const AgentUsageSnapshot& snapshot,
                              const UsageState& state, const NoticeSettings& settings,
                              Instant now) {
    if (const auto kind = dueKind({snapshot.id, ""}, settings);
        kind && !isOldReading(state, snapshot, now)) {
        notices.push_back({*kind, snapshot.id, {}});
    }
    for (const UsageWindow& window : snapshot.windows) {
        const auto kind = dueKind({snapshot.id, window.id}, settings);
        if (kind && !isOldReading(state, snapshot, window, now) && !isDue(window, now)) {
            notices.push_back({*kind, snapshot.id, window.id});
        }
    }
}

/// The one that says most: a window has one notice.
std::optional<NoticeKind> UsageNotices::dueKind(const WindowKey& key,
                                                const NoticeSettings& settings) const {
    const auto found = memory_.windows.find(key);
    const auto watched = windows_.find(key);
    if (found == memory_.windows.end() || watched == windows_.end()) {
        return std::nullopt;
    }
    const PeriodMemory& period = found->second;
    const WindowWatch& watch = watched->second;
    const auto isNew = [&](NoticeKind kind) {
        return settings.tells(kind) && !period.isMuted && !period.said.contains(kind);
    };
    const bool isOver = period.said.contains(NoticeKind::usedUp);
    if (watch.isUsedUp && isNew(NoticeKind::usedUp)) {
        return NoticeKind::usedUp;
    }
    if (watch.runsOutReadings >= settledReadings && isNew(NoticeKind::runsOut) && !isOver) {
        return NoticeKind::runsOut;
    }
    if (watch.isCritical && isNew(NoticeKind::critical) && !isOver) {
        return NoticeKind::critical;
    }
    if (period.isBack && watch.isUsable) {
        return NoticeKind::back;
    }
    return period.hasReset && watch.isUsable ? std::optional(NoticeKind::reset) : std::nullopt;
}

bool UsageNotices::isExpiryDue(const AgentUsageSnapshot& snapshot, Instant now) {
    const auto expiry = expiryOf(snapshot);
    if (!expiry || *expiry <= now) {
        return false;
    }
    AgentMemory& agent = memory_.agents[snapshot.id];
    const bool isSaid = isSameExpiry(agent, *expiry);
    if (isSaid && *expiry - now > expiryNotice + expirySlack) {
        // The clock was wrong when it was told.
        agent.saidExpiry.reset();
        isChanged_ = true;
    }
    return *expiry - now <= expiryNotice && !isSaid;
}

/// One that has never been read is not in use: what it needs, the setup tells.
bool UsageNotices::isUnreadDue(const AgentUsageSnapshot& snapshot, const UsageState& state) {
    const auto known = memory_.agents.find(snapshot.id);
    return snapshot.error && known != memory_.agents.end() && !known->second.saidUnread &&
           known->second.unreadFor >= unreadLimit - unreadSlack &&
           state.lastSuccess.contains(snapshot.id);
}

bool UsageNotices::holds(const Notice& notice, const UsageState& state, Instant now) const {
    const AgentUsageSnapshot* snapshot = find(state, notice.agent);
    if (!snapshot) {
        return false;
    }
    if (notice.kind == NoticeKind::unread) {
        return snapshot->error.has_value();
    }
    if (notice.kind == NoticeKind::expires) {
        const auto expiry = expiryOf(*snapshot);
        return expiry && *expiry > now && *expiry - now <= expiryNotice + expirySlack;
    }
    const auto found = windows_.find({notice.agent, notice.windowID});
    if (found == windows_.end() ||
        (!notice.windowID.empty() && !state.window(notice.agent, notice.windowID))) {
        return false;
    }
    const WindowWatch& watch = found->second;
    const bool isOver = watch.resetsAt && *watch.resetsAt <= now;
    switch (notice.kind) {
    case NoticeKind::critical:
        return watch.staysCritical && !isOver;
    case NoticeKind::runsOut:
        return watch.lastingReadings < settledReadings && !isOver;
    case NoticeKind::usedUp:
        // Past its reset too, until a reading tells that it is back.
        return memory_.windows.at({notice.agent, notice.windowID}).wasUsedUp && !watch.isHeld;
    default:
        return !watch.isUsedUp;
    }
}

void UsageNotices::noteSaid(const Notice& notice, const UsageState& state) {
    if (notice.kind == NoticeKind::unread) {
        memory_.agents[notice.agent].saidUnread = true;
        return;
    }
    if (notice.kind == NoticeKind::expires) {
        memory_.agents[notice.agent].saidExpiry = expiryOf(*find(state, notice.agent));
        return;
    }
    PeriodMemory& period = memory_.windows[{notice.agent, notice.windowID}];
    period.isBack = period.hasReset = false;
    const WindowWatch& watch = windows_[{notice.agent, notice.windowID}];
    period.said.insert(notice.kind);
    // The words of what says more say this too.
    if (notice.kind == NoticeKind::runsOut && watch.isCritical) {
        period.said.insert(NoticeKind::critical);
    }
}

/// Puts the notices on the screen in place of those about the same; several are one.
NoticePost UsageNotices::posted(std::vector<Notice> notices, std::vector<std::string>& closed) {
    for (const Notice& notice : notices) {
        for (NoticePost& post : shown_) {
            std::erase_if(post.notices,
                          [&](const Notice& former) { return idOf(former) == idOf(notice); });
        }
    }
    NoticePost post{notices.size() == 1 ? idOf(notices.front()) : groupID, std::move(notices)};
    std::erase_if(shown_, [&](const NoticePost& former) {
        if (former.id == post.id) {
            // What a former one of several tells beside this goes on being told.
            post.notices.insert(post.notices.end(), former.notices.begin(), former.notices.end());
        } else if (former.notices.empty()) {
            closed.push_back(former.id);
        }
        return former.id == post.id || former.notices.empty();
    });
    shown_.push_back(post);
    return post;
}

// What becomes of them on the screen

void UsageNotices::mute(const std::string& id) {
    const auto post = std::ranges::find(shown_, id, &NoticePost::id);
    if (post == shown_.end()) {
        return;
    }
    for (const Notice& notice : post->notices) {
        const auto period = memory_.windows.find({notice.agent, notice.windowID});
        if (period != memory_.windows.end() && notice.kind != NoticeKind::unread &&
            notice.kind != NoticeKind::expires) {
            period->second.isMuted = true;
            isChanged_ = true;
        }
    }
}

std::optional<AgentProviderID> UsageNotices::agentOf(const std::string& id) const {
    const auto post = std::ranges::find(shown_, id, &NoticePost::id);
    if (post == shown_.end()) {
        // One that an earlier run has left on the screen.
        const std::size_t end = id.find('/');
        return end != std::string::npos ? std::optional(AgentProviderID(id.substr(0, end)))
                                        : std::nullopt;
    }
    const AgentProviderID& agent = post->notices.front().agent;
    const bool isOfOne = std::ranges::all_of(
        post->notices, [&](const Notice& notice) { return notice.agent == agent; });
    return isOfOne ? std::optional(agent) : std::nullopt;
}

void UsageNotices::dismissed(const std::string& id) {
    std::erase_if(shown_, [&](const NoticePost& post) { return post.id == id; });
}

void UsageNotices::notShown(const std::string& id) {
    const auto post = std::ranges::find(shown_, id, &NoticePost::id);
    if (post == shown_.end()) {
        return;
    }
    for (const Notice& notice : post->notices) {
        if (notice.kind == NoticeKind::unread) {
            memory_.agents[notice.agent].saidUnread = false;
        } else if (notice.kind == NoticeKind::expires) {
            memory_.agents[notice.agent].saidExpiry.reset();
        } else {
            PeriodMemory& period = memory_.windows[{notice.agent, notice.windowID}];
            period.said.erase(notice.kind);
            period.isBack = period.isBack || notice.kind == NoticeKind::back;
            period.hasReset = period.hasReset || notice.kind == NoticeKind::reset;
        }
    }
    isChanged_ = true;
    shown_.erase(post);
}

std::vector<std::string> UsageNotices::shownIDs() const {
    std::vector<std::string> ids;
    for (const NoticePost& post : shown_) {
        ids.push_back(post.id);
    }
    return ids;
}

} // namespace vellmark
