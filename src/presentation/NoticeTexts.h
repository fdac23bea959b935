#pragma once

#include "presentation/AgentBlockContent.h"
#include "presentation/UsageNotices.h"
#include "text/Localization.h"

#include <string>

namespace vellmark {

/// A notice in words, as plain text.
struct NoticeText {
    std::string title;
    /// One line or several.
    std::string body;
    bool operator==(const NoticeText&) const = default;
};

/// "Claude · Session: used up" and "Back 4:15 PM", "Still works: …"; several notices in a line
/// each. Figures are those of the state; all times are moments, since a notice may stand for hours.
NoticeText noticeText(const NoticePost& post, const UsageState& state, Instant now,
                      const Localization& words);

/// What can be installed or logged in to against what the notice tells; `none` for any other.
WayOut setupOf(const NoticePost& post, const UsageState& state);

} // namespace vellmark
