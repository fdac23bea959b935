#pragma once

#include "presentation/NoticeMemory.h"
#include "presentation/NoticeSettings.h"
#include "store/UsageState.h"
#include "text/Instant.h"

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vellmark {

/// One thing to tell: of a window, or of the agent where `windowID` is empty.
struct Notice {
    NoticeKind kind = NoticeKind::critical;
    AgentProviderID agent;
    std::string windowID;
    bool operator==(const Notice&) const = default;
};

/// What appears as one notice on the screen. One with an `id` that is shown already takes its
/// place.
struct NoticePost {
    std::string id;
    std::vector<Notice> notices;
    bool operator==(const NoticePost&) const = default;
};

/// Whether a period of a window can be muted by it: an expiry and an agent that cannot be read are
/// told once anyway.
bool canMute(const NoticePost& post);
/// It need not interrupt anybody.
bool isQuiet(const NoticePost& post);

/// What is to be done on the screen: first to close, then to post.
struct NoticeChanges {
    std::vector<std::string> closed;
    std::optional<NoticePost> post;
    /// Something is to be told as soon as that is possible.
    bool isWaiting = false;
};

/// A look at the clocks.
struct NoticeMoment {
    Instant now;
    /// A clock that goes on while the system sleeps and that nobody sets.
    Seconds continuous{0};
    /// Nothing is told now: the hours are quiet, or nobody would show it. It is told afterwards,
    /// where it still holds.
    bool isSilent = false;
};

/// Decides what the user is told of the agents' quotas, and when it no longer holds. Main thread.
///
/// Judges readings, not moments: what a reading says is told once a period of its window, however
/// often the figures cross a threshold, the program starts, or the clock is set. The first reading
/// of an agent after a start or a wake tells nothing; what it found is told with the second. What
/// comes up while a refresh is under way is told when that is over, as one notice.
class UsageNotices {
public:
    explicit UsageNotices(NoticeMemory memory) : memory_(std::move(memory)) {}

    /// Looks at the state after a change of it, and now and then.
    NoticeChanges look(const UsageState& state, const NoticeSettings& settings,
                       const NoticeMoment& moment);
    void systemDidWake();

    /// The user wants to hear no more of what the notice is about until the period is over.
    void mute(const std::string& id);
    /// Whose page tells more about a notice; absent where it is about several agents.
    std::optional<AgentProviderID> agentOf(const std::string& id) const;
    /// The notice has gone from the screen.
    void dismissed(const std::string& id);
    /// The notice never came to the screen: it is to be told again.
    void notShown(const std::string& id);
    /// Who shows notices has gone, and with it all of them.
    void allGone() { shown_.clear(); }
    /// Those that are on the screen, as far as is known.
    std::vector<std::string> shownIDs() const;

    const NoticeMemory& memory() const { return memory_; }
    /// Whether something has been told, or is to be, since the last question: worth keeping.
    bool takeIsChanged() { return std::exchange(isChanged_, false); }

private:
    /// What the last readings of a window said; of this run.
    struct WindowWatch {
        bool isUsable = false;
        bool isUsedUp = false;
        bool isHeld = false;
        /// Told once, it holds until the window is healthy again: no flicker at the threshold.
        bool isCritical = false;
        bool staysCritical = false;
        /// How often in a row it was said to run out before its reset, and to last.
        int runsOutReadings = 0;
        int lastingReadings = 0;
        /// Of the last reading, and of the last that counts in a row.
        std::optional<Instant> readAt;
        std::optional<Instant> countedAt;
        std::optional<Instant> resetsAt;
    };
    struct AgentWatch {
        /// When the last attempt was made, and whether it failed.
        std::optional<std::pair<Instant, bool>> lastAttempt;
        /// Since the start or the last wake.
        int readings = 0;
        int attempts = 0;
        /// Of the last that counts as one, by whatever way.
        std::optional<Instant> readAt;
        std::optional<Seconds> lastFailure; ///< by the continuous clock
        /// The clock was set since the last reading: what is over by the clock may not be.
        bool isClockSet = false;
    };

    void lookAtClocks(const NoticeMoment& moment);
    void takeAttempt(const AgentUsageSnapshot& snapshot, const UsageState& state,
                     const NoticeMoment& moment);
    void takeReading(const AgentUsageSnapshot& snapshot, const UsageState& state);
    void takeFigures(const AgentUsageSnapshot& snapshot, const UsageState& state);
    void takeFailure(const AgentUsageSnapshot& snapshot, const NoticeMoment& moment);
    void takeWindow(const AgentUsageSnapshot& snapshot, const UsageWindow& window,
                    const UsageState& state);
    void takeRefusal(const AgentUsageSnapshot& snapshot);
    void forgetWhatIsNotWanted(const NoticeSettings& settings);

    std::vector<Notice> due(const UsageState& state, const NoticeSettings& settings, Instant now);
    void addWindows(std::vector<Notice>& notices, const AgentUsageSnapshot& snapshot,
                    const UsageState& state, const NoticeSettings& settings, Instant now);
    std::optional<NoticeKind> dueKind(const WindowKey& key, const NoticeSettings& settings) const;
    bool isExpiryDue(const AgentUsageSnapshot& snapshot, Instant now);
    bool isUnreadDue(const AgentUsageSnapshot& snapshot, const UsageState& state);
    bool holds(const Notice& notice, const UsageState& state, Instant now) const;
    void noteSaid(const Notice& notice, const UsageState& state);
    NoticePost posted(std::vector<Notice> notices, std::vector<std::string>& closed);

    NoticeMemory memory_;
    std::map<WindowKey, WindowWatch> windows_;
    std::map<AgentProviderID, AgentWatch> agents_;
    std::vector<NoticePost> shown_;
    std::optional<Seconds> clockOffset_;
    bool isChanged_ = false;
};

} // namespace vellmark
