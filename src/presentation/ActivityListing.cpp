#include "presentation/ActivityListing.h"

#include "presentation/AgentBlockContent.h"
#include "store/ActivityLines.h"
#include "text/Formatting.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace vellmark {

namespace {

using Level = ActivityEntry::Level;
using RowKind = ActivityRow::Kind;

constexpr std::string_view beginKey = "log.refresh.started";
constexpr std::string_view endKey = "log.refresh.finished";
constexpr std::string_view abortKey = "log.refreshAborted.terminated";
constexpr std::string_view readKey = "log.agent.read";
/// What an agent's reading writes each time.
constexpr std::array<std::string_view, 4> routineKeys = {readKey, "log.agent.way",
                                                         "log.claude.timing", "log.agent.says"};

bool isRoutine(const ActivityEntry& entry) {
    return std::ranges::find(routineKeys, entry.message.key) != routineKeys.end();
}

} // namespace

ActivityListing::ActivityListing(Localization words)
    : words_(std::move(words)), zone_(words_.timeZone()) {}

void ActivityListing::setWords(Localization words) {
    words_ = std::move(words);
    zone_ = words_.timeZone();
    day_ = {};
}

void ActivityListing::setFilter(ActivityFilter filter) {
    if (filter == filter_) {
        return;
    }
    filter_ = std::move(filter);
    search_ = SearchWords(filter_.words);
    rebuild();
}

void ActivityListing::setEntries(std::shared_ptr<const Entries> entries, std::size_t count) {
    if (entries != entries_ || count < kinds_.size()) {
        kinds_.clear();
        refreshes_.clear();
        isInRefresh_ = false;
        said_.clear();
        saidBefore_.clear();
        unfolded_.clear();
        entries_ = std::move(entries);
    } else if (count == kinds_.size()) {
        return;
    }
    kinds_.reserve(count);
    while (kinds_.size() < count) {
        const auto index = static_cast<std::uint32_t>(kinds_.size());
        const EntryKind kind = kindOf(at(index));
        kinds_.push_back(kind);
        if (kind == EntryKind::begin) {
            refreshes_.push_back({index, index + 1});
            isInRefresh_ = true;
        } else if (isInRefresh_) {
            refreshes_.back().end = index + 1;
            isInRefresh_ = kind != EntryKind::end && at(index).message.key != abortKey;
        }
    }
    rebuild();
}

void ActivityListing::toggle(std::size_t row) {
    if (row >= rows_.size() || rows_[row].kind == RowKind::day) {
        return;
    }
    const std::pair key(rows_[row].kind, rows_[row].first);
    if (unfolded_.erase(key) == 0) {
        unfolded_.insert(key);
    }
    rebuild();
}

// What is routine

ActivityListing::EntryKind ActivityListing::kindOf(const ActivityEntry& entry) {
    if (entry.message.key == beginKey) {
        for (auto& [agent, texts] : said_) {
            saidBefore_[agent] = std::exchange(texts, {});
        }
        said_.clear();
        return EntryKind::begin;
    }
    if (entry.message.key == endKey) {
        return EntryKind::end;
    }
    const bool isNews = entry.agent && isInRefresh_ && !isRepeated(entry);
    return isRoutine(entry) || (entry.agent && isInRefresh_ && !isNews) ? EntryKind::routine
                                                                        : EntryKind::notable;
}

/// Whether the refresh before said the same of the agent; notes what this one says.
bool ActivityListing::isRepeated(const ActivityEntry& entry) {
    const auto before = saidBefore_.find(*entry.agent);
    std::set<std::string>& said = said_[*entry.agent];
    if (!isRoutine(entry)) {
        said.insert(entry.text);
    }
    return before != saidBefore_.end() && before->second.contains(entry.text);
}

// What is shown

bool ActivityListing::matchesAgent(const ActivityEntry& entry) const {
    if (!filter_.agent) {
        return true;
    }
    return filter_.agent->rawValue.empty() ? !entry.agent : entry.agent == filter_.agent;
}

bool ActivityListing::matches(const ActivityEntry& entry) const {
    if (entry.level < filter_.least || !matchesAgent(entry)) {
        return false;
    }
    return search_.empty() || search_.areIn(subjectText(entry) + " " + entry.text);
}

std::size_t ActivityListing::matchingIn(std::uint32_t first, std::uint32_t end) const {
    if (!filter_.agent) {
        return end - first;
    }
    std::size_t count = 0;
    for (std::uint32_t index = first; index < end; ++index) {
        count += matchesAgent(at(index)) ? 1 : 0;
    }
    return count;
}

/// Whether nothing in it but its routine passes the filter.
bool ActivityListing::isQuiet(const Refresh& refresh) const {
    for (std::uint32_t index = refresh.first; index < refresh.end; ++index) {
        if (kinds_[index] == EntryKind::notable && matchesAgent(at(index))) {
            return false;
        }
    }
    return true;
}

ActivityListing::Day ActivityListing::dayOf(Instant time) const {
    CalendarDate date = zone_.calendarDate(time);
    date.hour = date.minute = date.second = 0;
    Day day{.begin = zone_.instant(date)};
    ++date.day;
    day.end = zone_.instant(date);
    return day;
}

void ActivityListing::rebuild() {
    rows_.clear();
    matching_ = 0;
    day_ = {};
    if (!entries_) {
        return;
    }
    filter_.picksEntries() ? addEntries() : addGroups();
}

void ActivityListing::addEntries() {
    for (std::uint32_t index = 0; index < kinds_.size(); ++index) {
        if (matches(at(index))) {
            ++matching_;
            addEntry(index, 0);
        }
    }
}

void ActivityListing::addGroups() {
    std::uint32_t index = 0;
    for (std::size_t next = 0; next < refreshes_.size();) {
        // What stands between the refreshes tells a story of its own.
        for (; index < refreshes_[next].first; ++index) {
            if (matchesAgent(at(index))) {
                ++matching_;
                addEntry(index, 0);
            }
        }
        const Day day = dayOf(at(refreshes_[next].first).time);
        std::size_t end = next;
        while (end < refreshes_.size() && refreshes_[end].first == index &&
               day.contains(at(index).time) && isQuiet(refreshes_[end])) {
            index = refreshes_[end++].end;
        }
        if (end == next) {
            index = refreshes_[end++].end;
        } else if (end == refreshes_.size() && end - next > 1) {
            addRefreshes(next, end - 1); // the latest one keeps its own row
            next = end - 1;
        }
        addRefreshes(next, end);
        next = end;
    }
    for (; index < kinds_.size(); ++index) {
        if (matchesAgent(at(index))) {
            ++matching_;
            addEntry(index, 0);
        }
    }
}

/// Several are quiet ones.
void ActivityListing::addRefreshes(std::size_t first, std::size_t end) {
    const std::span group(refreshes_.data() + first, end - first);
    std::uint32_t count = 0;
    for (const Refresh& refresh : group) {
        const std::size_t found = matchingIn(refresh.first, refresh.end);
        matching_ += found;
        count += found > 0 ? 1 : 0;
    }
    if (count == 0) {
        return;
    }
    const bool isMany = count > 1;
    if (isMany) {
        const ActivityRow row{.kind = RowKind::refreshes,
                              .isUnfolded =
                                  unfolded_.contains({RowKind::refreshes, group.front().first}),
                              .first = group.front().first,
                              .end = group.back().end,
                              .count = count};
        add(row);
        if (!row.isUnfolded) {
            return;
        }
    }
    for (const Refresh& refresh : group) {
        addRefresh(refresh, isMany ? 1 : 0, isMany || isQuiet(refresh));
    }
}

void ActivityListing::addRefresh(const Refresh& refresh, std::uint8_t depth, bool isQuiet) {
    const std::size_t found = matchingIn(refresh.first, refresh.end);
    if (found == 0) {
        return;
    }
    const bool isUnfolded = unfolded_.contains({RowKind::refresh, refresh.first});
    const bool isSingle = found == 1 && filter_.agent;
    if (!isSingle) {
        add({.kind = RowKind::refresh,
             .depth = depth,
             .isUnfolded = isUnfolded,
             .first = refresh.first,
             .end = refresh.end});
        ++depth;
    }
    for (std::uint32_t index = refresh.first; index < refresh.end; ++index) {
        const bool isShown =
            isSingle || isUnfolded || (!isQuiet && kinds_[index] == EntryKind::notable);
        if (isShown && matchesAgent(at(index))) {
            addEntry(index, depth);
        }
    }
}

void ActivityListing::addEntry(std::uint32_t index, std::uint8_t depth) {
    add({.kind = RowKind::entry,
         .depth = depth,
         .isUnfolded = unfolded_.contains({RowKind::entry, index}),
         .first = index,
         .end = index + 1});
}

void ActivityListing::add(ActivityRow row) {
    const Instant time = at(row.first).time;
    if (!day_.contains(time)) {
        day_ = dayOf(time);
        rows_.push_back({.kind = RowKind::day, .first = row.first, .end = row.first});
    }
    rows_.push_back(row);
}

// What the rows say

std::string ActivityListing::subjectText(const ActivityEntry& entry) const {
    return entry.agent ? agentShortName(*entry.agent, words_) : words_.text("app.name");
}

const ActivityEntry& ActivityListing::spokesman(const ActivityRow& row) const {
    const ActivityEntry* found = nullptr;
    for (std::uint32_t index = row.first; index < row.end; ++index) {
        const ActivityEntry& entry = at(index);
        if (row.kind != RowKind::refresh || !matchesAgent(entry)) {
            continue;
        }
        const std::string& key = entry.message.key;
        if (!found || key == endKey || (filter_.agent && key == readKey)) {
            found = &entry;
        }
    }
    return found ? *found : at(row.first);
}

ActivityRowContent ActivityListing::content(const ActivityRow& row, Instant now) const {
    const ActivityEntry& first = at(row.first);
    ActivityRowContent content{.kind = row.kind, .depth = row.depth};
    if (row.kind == RowKind::day) {
        content.text = dayText(first.time, now, words_);
        content.accessibilityText = content.text;
        return content;
    }
    const ActivityEntry& entry = spokesman(row);
    content.isFold = row.kind != RowKind::entry;
    content.isUnfolded = row.isUnfolded;
    content.time = exactTimeText(first.time, words_);
    content.agent = filter_.agent || !content.isFold ? entry.agent : std::nullopt;
    content.subject =
        content.agent ? agentShortName(*content.agent, words_) : words_.text("app.name");
    content.level = content.isFold ? Level::info : entry.level;
    content.text = row.kind == RowKind::refreshes
                       ? words_.format("activity.refreshes", {std::int64_t{row.count}})
                       : entry.text;
    std::string said =
        words_.format("activity.row.accessibility", {content.time, content.subject, content.text});
    if (content.isFold) {
        said = words_.format(row.isUnfolded ? "activity.unfolded.accessibility"
                                            : "activity.folded.accessibility",
                             {said});
    } else if (content.level != Level::info) {
        said = words_.format(content.level == Level::error ? "activity.error.accessibility"
                                                           : "activity.notice.accessibility",
                             {said});
    }
    content.accessibilityText = std::move(said);
    return content;
}

std::string ActivityListing::countText() const {
    const auto all = static_cast<std::int64_t>(total());
    if (matching_ != total()) {
        return words_.format("activity.count.some", {static_cast<std::int64_t>(matching_), all});
    }
    return words_.format(words_.takesSingular(all) ? "activity.count.one" : "activity.count",
                         {all});
}

std::string ActivityListing::linesText(std::span<const std::size_t> rows) const {
    std::set<std::uint32_t> chosen;
    for (const std::size_t row : rows) {
        if (row >= rows_.size()) {
            continue;
        }
        for (std::uint32_t index = rows_[row].first; index < rows_[row].end; ++index) {
            if (matchesAgent(at(index))) {
                chosen.insert(index);
            }
        }
    }
    std::string text;
    for (const std::uint32_t index : chosen) {
        text += ActivityLines::text(at(index), zone_) + "\n";
    }
    return text;
}

} // namespace vellmark
