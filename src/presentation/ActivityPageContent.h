#pragma once

#include "presentation/ActivityListing.h"
#include "presentation/PageHeadContent.h"
#include "store/UsageState.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vellmark {

/// What the activity page shows around its rows, and the entries that the rows are made of.
struct ActivityPageContent {
    /// Whose entries can be picked; without an agent all, with an empty identifier the program's.
    struct Subject {
        std::optional<AgentProviderID> agent;
        std::string name;
        bool operator==(const Subject&) const = default;
    };

    PageHeadContent head;
    ControlContent copy;
    ControlContent save;
    std::string search;
    std::string subjectsName;
    std::vector<Subject> subjects;
    /// From the least level on: all, notices, errors.
    std::vector<std::string> levels;
    std::string timeTitle;
    std::string subjectTitle;
    std::string textTitle;
    std::string listName;
    std::string follows;
    std::string rests;
    ControlContent toNewest;
    std::string nothingYet;
    std::string nothingFound;
    ControlContent showAll;
    std::string loading;
    /// Why the log could not be saved; empty when nothing went wrong.
    std::string trouble;

    Localization words{"en"};
    Instant now{};
    /// Null until the log has been read. The first `entryCount` count; it grows behind them.
    std::shared_ptr<const std::vector<ActivityEntry>> entries;
    std::size_t entryCount = 0;
};

/// What the page asks of the program. Main thread.
struct ActivityPageActions {
    /// Saves the log in a file that the user chooses.
    std::function<void()> save = [] {};
    /// The page is not seen any more: its entries are not needed until it asks for content again.
    std::function<void()> rest = [] {};
};

/// Everything but the entries.
ActivityPageContent activityPageContent(const UsageState& state, Instant now,
                                        const Localization& words);

} // namespace vellmark
