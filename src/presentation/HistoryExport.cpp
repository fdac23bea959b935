#include "presentation/HistoryExport.h"

#include "text/BoundedJSON.h"
#include "text/Dates.h"
#include "text/DecimalNumber.h"
#include "text/TerminalText.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cctype>

namespace vellmark {

namespace {

struct Row {
    std::string windowID;
    HistoryPoint point;
};

std::string isoText(Instant instant) {
    return formatDate(instant, "yyyy-MM-dd'T'HH:mm:ss'Z'", TimeZone::utc());
}

std::string csvField(std::string_view id) {
    const std::string text = singleLine(id);
    if (text.find_first_of(",\"\r\n") == std::string::npos) {
        return text;
    }
    std::string quoted = "\"";
    for (const char character : text) {
        quoted.append(character == '"' ? 2 : 1, character);
    }
    return quoted + "\"";
}

std::string csvText(const std::vector<Row>& rows, const AgentProviderID& agent) {
    std::string text(historyCSVHead);
    for (const auto& [windowID, point] : rows) {
        text += historyCSVLine(point.capturedAt, agent.rawValue, windowID, point.usedPercent,
                               point.resetsAt());
    }
    return text;
}

std::string jsonText(const std::vector<Row>& rows, const AgentProviderID& agent) {
    std::string text = "[";
    for (const Row& row : rows) {
        JSON sample{{"capturedAt", isoText(row.point.capturedAt)},
                    {"provider", agent.rawValue},
                    {"windowID", row.windowID},
                    {"usedPercent", row.point.usedPercent}};
        if (const auto resetsAt = row.point.resetsAt()) {
            sample["resetsAt"] = isoText(*resetsAt);
        }
        text += (text.size() == 1 ? "\n" : ",\n") + serialized(sample, -1);
    }
    return text + "\n]\n";
}

} // namespace

std::string historyExportText(const UsageHistory& history, const AgentProviderID& agent,
                              const std::vector<std::string>& windowIDs, Instant from, Instant to,
                              HistoryExportFormat format) {
    std::vector<Row> rows;
    for (const std::string& windowID : windowIDs) {
        history.read({agent, windowID}, from, to, [&](std::span<const HistoryPoint> points) {
            for (const HistoryPoint& point : points) {
                if (point.capturedAt >= from) {
                    rows.push_back({windowID, point});
                }
            }
        });
    }
    std::ranges::stable_sort(rows, {}, [](const Row& row) { return row.point.capturedAt; });
    switch (format) {
    case HistoryExportFormat::csv:
        return csvText(rows, agent);
    case HistoryExportFormat::json:
        return jsonText(rows, agent);
    case HistoryExportFormat::png:
        break;
    }
    return {};
}

std::string historyCSVLine(Instant capturedAt, std::string_view provider, std::string_view windowID,
                           double usedPercent, std::optional<Instant> resetsAt) {
    return isoText(capturedAt) + "," + csvField(provider) + "," + csvField(windowID) + "," +
           decimalText(usedPercent) + "," + (resetsAt ? isoText(*resetsAt) : std::string()) + "\n";
}

std::string historyExportName(const AgentProviderID& agent, Instant now, const TimeZone& zone) {
    std::string name = agent.rawValue;
    std::erase_if(name, [](unsigned char character) { return std::isalnum(character) == 0; });
    return "Vellmark-Verlauf-" + name + "-" + formatDate(now, "yyyy-MM-dd", zone);
}

HistoryExportFormat historyExportFormat(std::string_view fileName) {
    const auto dot = fileName.rfind('.');
    std::string end(dot == std::string_view::npos ? std::string_view() : fileName.substr(dot + 1));
    std::ranges::transform(end, end.begin(), [](unsigned char character) {
        return static_cast<char>(std::tolower(character));
    });
    if (end == "json") {
        return HistoryExportFormat::json;
    }
    return end == "png" ? HistoryExportFormat::png : HistoryExportFormat::csv;
}

} // namespace vellmark
