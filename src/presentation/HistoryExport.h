#pragma once

#include "store/UsageHistory.h"

#include <string>
#include <vector>

namespace vellmark {

enum class HistoryExportFormat { csv, json, png };

/// The samples of an agent's windows in a span of time, in the order of time, for other programs.
/// Moments are in UTC by ISO 8601. Texts end with a line break; `png` has none.
std::string historyExportText(const UsageHistory& history, const AgentProviderID& agent,
                              const std::vector<std::string>& windowIDs, Instant from, Instant to,
                              HistoryExportFormat format);

/// "Vellmark-Verlauf-claude-2025-11-20", without the end that tells the format. Nothing in it can
/// lead to another directory.
std::string historyExportName(const AgentProviderID& agent, Instant now, const TimeZone& zone);

/// By the end of a file's name; CSV for any other.
HistoryExportFormat historyExportFormat(std::string_view fileName);

} // namespace vellmark
