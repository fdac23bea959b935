#pragma once

#include "store/UsageHistory.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vellmark {

enum class HistoryExportFormat { csv, json, png };

/// The samples of an agent's windows in a span of time, in the order of time, for other programs.
/// Moments are in UTC by ISO 8601. Texts end with a line break; `png` has none.
std::string historyExportText(const UsageHistory& history, const AgentProviderID& agent,
                              const std::vector<std::string>& windowIDs, Instant from, Instant to,
                              HistoryExportFormat format);

/// The first line of the history as CSV, and the line of one sample, each with its line break.
/// Moments as above; ids lose what is no text on one line, and are quoted where they must be.
inline constexpr std::string_view historyCSVHead =
    "capturedAt,provider,windowID,usedPercent,resetsAt\n";
std::string historyCSVLine(Instant capturedAt, std::string_view provider, std::string_view windowID,
                           double usedPercent, std::optional<Instant> resetsAt);

/// "Vellmark-Verlauf-claude-2025-11-20", without the end that tells the format. Nothing in it can
/// lead to another directory.
std::string historyExportName(const AgentProviderID& agent, Instant now, const TimeZone& zone);

/// By the end of a file's name; CSV for any other.
HistoryExportFormat historyExportFormat(std::string_view fileName);

} // namespace vellmark
