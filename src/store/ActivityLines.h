#pragma once

#include "store/ActivityEntry.h"
#include "text/Dates.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vellmark {

/// The lines of "activity.log". An entry is one line
///
///     2026-11-20 14:31:20 notice codex: Trying again in 20 s after a time-out
///
/// and, where its message is known, a second one behind a tab: key, language and arguments,
///
///     <TAB>log.agent.retry en [{"wholeSeconds":20}]
///
/// which a version that knows no such lines leaves out.
namespace ActivityLines {

/// The entry's first line, without its end. Control characters and line breaks are gone.
std::string text(const ActivityEntry& entry, const TimeZone& zone);
/// All its lines, each with its end.
std::string record(const ActivityEntry& entry, const TimeZone& zone);

/// Whether a line belongs to the one before.
inline bool continues(std::string_view line) {
    return line.starts_with('\t');
}

template<typename Visit>
void forEach(std::string_view text, Visit&& visit) {
    while (!text.empty()) {
        const auto end = std::min(text.find('\n'), text.size());
        visit(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
}

/// Reads lines back. Keeps the last hour's instant, since finding one out is what takes time.
class Reader {
public:
    /// `zone` must outlive the reader.
    explicit Reader(const TimeZone& zone) : zone_(zone) {}

    /// When the line was written; absent for whatever does not begin with a date and a time of day.
    std::optional<Instant> instant(std::string_view line);
    /// Adds the entries of `text` since `since`. What is no entry is left out.
    void read(std::string_view text, Instant since, std::vector<ActivityEntry>& entries);

private:
    std::optional<ActivityEntry> entry(std::string_view line);

    const TimeZone& zone_;
    std::string hourText_;
    Instant hourBegin_{};
};

} // namespace ActivityLines

} // namespace vellmark
