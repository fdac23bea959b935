#pragma once

#include "store/ActivityEntry.h"
#include "text/Localization.h"
#include "text/SearchWords.h"
#include "text/TimeZone.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <vector>

namespace vellmark {

/// Which entries of the activity log are looked for.
struct ActivityFilter {
    /// This agent's alone; with an empty identifier those about the program itself.
    std::optional<AgentProviderID> agent;
    ActivityEntry::Level least = ActivityEntry::Level::info;
    /// Every word of it stands in text or agent.
    std::string words;

    /// Whether single entries are looked for, which are listed one by one.
    bool picksEntries() const { return least != ActivityEntry::Level::info || !words.empty(); }
    bool operator==(const ActivityFilter&) const = default;
};

/// A row of the activity page, in the numbers of entries.
struct ActivityRow {
    enum class Kind : std::uint8_t {
        day,
        refreshes, ///< several in a row with nothing to tell
        refresh,
        entry,
    };
    Kind kind = Kind::entry;
    /// How deep it stands in what was unfolded.
    std::uint8_t depth = 0;
    /// What belongs to it follows; of an entry, its whole text is shown.
    bool isUnfolded = false;
    /// The entries it stands for: from `first` up to `end`.
    std::uint32_t first = 0;
    std::uint32_t end = 0;
    /// Of `refreshes`: how many.
    std::uint32_t count = 0;

    /// The same row, though it may have grown or been unfolded.
    bool isSame(const ActivityRow& other) const {
        return kind == other.kind && depth == other.depth && first == other.first;
    }
    bool operator==(const ActivityRow&) const = default;
};

/// What a row says.
struct ActivityRowContent {
    ActivityRow::Kind kind = ActivityRow::Kind::entry;
    int depth = 0;
    /// A day's name, or what has happened.
    std::string text;
    std::string time;
    /// Of an entry; a fold is as information.
    ActivityEntry::Level level = ActivityEntry::Level::info;
    std::optional<AgentProviderID> agent;
    std::string subject;
    /// It can be unfolded, whatever room its text has.
    bool isFold = false;
    bool isUnfolded = false;
    std::string accessibilityText;
};

/// The rows of the activity page: entries grouped by refresh, what is routine folded away, days
/// between them. A plain value of the main thread that follows a list of entries which grows.
///
/// Routine is what every refresh writes, and what a refresh says of an agent that the one before
/// said word for word. Several refreshes of a day with nothing else become one row; the latest one
/// keeps its own.
class ActivityListing {
public:
    using Entries = std::vector<ActivityEntry>;

    explicit ActivityListing(Localization words);

    void setWords(Localization words);
    void setFilter(ActivityFilter filter);
    const ActivityFilter& filter() const { return filter_; }
    /// The first `count` of these; the same list with more of them keeps what is unfolded.
    void setEntries(std::shared_ptr<const Entries> entries, std::size_t count);
    /// Folds or unfolds a row.
    void toggle(std::size_t row);

    const std::vector<ActivityRow>& rows() const { return rows_; }
    ActivityRowContent content(const ActivityRow& row, Instant now) const;
    /// All entries, also those that the filter hides.
    std::size_t total() const { return kinds_.size(); }
    /// "1,284 entries", "12 of 1,284 entries".
    std::string countText() const;
    /// The entries of these rows as lines of the log, each once.
    std::string linesText(std::span<const std::size_t> rows) const;

private:
    enum class EntryKind : std::uint8_t { begin, routine, end, notable };
    /// From its beginning up to its end or to the next one.
    struct Refresh {
        std::uint32_t first = 0;
        std::uint32_t end = 0;
    };
    struct Day {
        Instant begin{};
        Instant end{};
        bool contains(Instant time) const { return time >= begin && time < end; }
    };

    const ActivityEntry& at(std::size_t index) const { return (*entries_)[index]; }
    EntryKind kindOf(const ActivityEntry& entry);
    bool isRepeated(const ActivityEntry& entry);
    Day dayOf(Instant time) const;
    bool matches(const ActivityEntry& entry) const;
    bool matchesAgent(const ActivityEntry& entry) const;
    std::string subjectText(const ActivityEntry& entry) const;
    /// The entry that a fold shows in its row.
    const ActivityEntry& spokesman(const ActivityRow& row) const;

    void rebuild();
    void addEntries();
    void addGroups();
    void addRefreshes(std::size_t first, std::size_t end);
    void addRefresh(const Refresh& refresh, std::uint8_t depth, bool isQuiet);
    void addEntry(std::uint32_t index, std::uint8_t depth);
    void add(ActivityRow row);
    bool isQuiet(const Refresh& refresh) const;
    std::size_t matchingIn(std::uint32_t first, std::uint32_t end) const;

    Localization words_;
    TimeZone zone_;
    ActivityFilter filter_;
    SearchWords search_{""};
    std::shared_ptr<const Entries> entries_;
    std::vector<EntryKind> kinds_;
    std::vector<Refresh> refreshes_;
    bool isInRefresh_ = false;
    /// What the present refresh has said of an agent, and what the one before it that read it did.
    std::map<AgentProviderID, std::set<std::string>> said_;
    std::map<AgentProviderID, std::set<std::string>> saidBefore_;
    std::set<std::pair<ActivityRow::Kind, std::uint32_t>> unfolded_;
    std::vector<ActivityRow> rows_;
    std::size_t matching_ = 0;
    Day day_;
};

} // namespace vellmark
