#pragma once

#include "text/Instant.h"

#include <optional>
#include <string>
#include <string_view>

namespace vellmark {

/// The window that shows Fable's share of the week; not every account has it.
inline constexpr std::string_view claudeModelWindowID = "fable-weekly";

/// The lengths of the windows; every model's is as long as a week's.
inline constexpr double claudeSessionMinutes = 300;
inline constexpr double claudeWeekMinutes = 10080;

/// The identifier of the weekly window of one model, by the name that the CLI shows: "Opus" and
/// "Opus only" are "opus-weekly". Letters and digits of ASCII and dashes survive; absent when
/// there is no letter and no digit.
std::optional<std::string> claudeModelWindowIDFor(std::string_view modelName);

/// How long a model's window still counts after it was seen: it may be missing from one answer and
/// back in the next. Zero for the other windows.
Seconds claudeRemembersWindow(std::string_view windowID);

} // namespace vellmark
