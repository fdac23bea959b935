#pragma once

#include "probes/AgentFacts.h"
#include "report/SupportReport.h"
#include "text/Localization.h"
#include "text/Redaction.h"

#include <array>
#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vellmark {

inline constexpr std::array removedKinds{RemovedKind::path, RemovedKind::address, RemovedKind::key};

/// Part of a report, in bytes.
struct TextRange {
    std::size_t begin = 0;
    std::size_t end = 0;
    bool operator==(const TextRange&) const = default;
};

/// What was found in a report for what somebody looks for.
struct ReportMatches {
    /// No more are looked for.
    static constexpr std::size_t most = 9'999;

    std::vector<TextRange> places;
    /// There are more.
    bool isCutOff = false;
};
/// Whatever the case of letters. `query` is not empty.
ReportMatches findInReport(std::string_view text, std::string_view query);

/// What the program has learnt of one agent, while the facts are gathered.
struct ReportProgress {
    AgentProviderID id;
    /// Absent as long as its CLI has not answered.
    std::optional<AgentFacts> facts;
};

/// What the window shows, as far as the model decides it.
struct SupportReportState {
    bool includesEmails = false;
    std::string whatHappened;
    /// The facts are being gathered, or a text is being made of them.
    bool isBuilding = false;
    std::vector<ReportProgress> progress;
    /// Null while there is none.
    std::shared_ptr<const SupportReportInput> input;
    std::size_t logLines = 0;
    std::shared_ptr<const RedactedText> text;
    std::string query;
    /// Null while nothing is looked for.
    std::shared_ptr<const ReportMatches> matches;
    std::size_t currentMatch = 0;
    std::string notice;
    bool noticeIsTrouble = false;
    /// The file that the notice is about; empty when there is none.
    std::filesystem::path noticeFile;
};

struct SupportReportContent {
    /// A line of what is shown until there is a text.
    struct ProgressRow {
        enum class Mark { waiting, done, trouble };
        Mark mark = Mark::waiting;
        std::string name;
        std::string state;
        bool operator==(const ProgressRow&) const = default;
    };
    /// How many places of a kind were removed: "9 paths".
    struct Removed {
        RemovedKind kind = RemovedKind::path;
        std::string words;
        bool operator==(const Removed&) const = default;
    };

    std::string hint;
    std::string happenedTitle;
    std::string happenedHint;
    std::string whatHappened;
    std::string includeEmailsTitle;
    bool includesEmails = false;

    std::string searchHint;
    std::string query;
    /// "2 of 14", or that nothing was found; empty while nothing is looked for.
    std::string searchStatus;
    std::string previousTitle;
    std::string nextTitle;

    /// The text's name for screen readers.
    std::string textTitle;
    /// Null until there is one.
    std::shared_ptr<const RedactedText> text;
    std::shared_ptr<const ReportMatches> matches;
    std::size_t currentMatch = 0;
    std::string progressTitle;
    std::vector<ProgressRow> progress;

    std::string scopeNote;
    /// "14 places removed:", or that there was nothing to remove.
    std::string removedTitle;
    std::vector<Removed> removed;
    /// What pointing at one of them does.
    std::string removedHelp;

    std::string notice;
    bool noticeIsTrouble = false;
    /// Empty when there is nothing to show.
    std::string showFolderTitle;
    std::string copyTitle;
    std::string saveTitle;
    std::string mailTitle;
    bool canSend = false;

    bool operator==(const SupportReportContent&) const = default;
};

SupportReportContent supportReportContent(const SupportReportState& state,
                                          const Localization& words);

/// What the report contains, and what could not be had.
std::string reportScopeNote(const SupportReportState& state, const Localization& words);

} // namespace vellmark
