#include "presentation/HistoryPageController.h"

#include <algorithm>

namespace vellmark {

namespace {
constexpr std::string_view rangeKey = "ChartRange";
} // namespace

HistoryPageController::HistoryPageController(const AgentUsageStore& store, Preferences& preferences)
    : store_(store), preferences_(preferences) {}

HistoryPageChoice HistoryPageController::currentChoice() const {
    HistoryPageChoice choice = choice_;
    const auto stored = preferences_.string(rangeKey);
    choice.range = chartRange(stored.value_or(std::string())).value_or(HistoryPageChoice().range);
    return choice;
}

HistoryPageContent HistoryPageController::content(Instant now, const Localization& words) const {
    HistoryPageContent content =
        historyPageContent(store_.state(), store_.history(), currentChoice(), now, words);
    content.exportNote = exportNote_;
    content.exportFailed = exportFailed_;
    return content;
}

void HistoryPageController::chooseAgent(const AgentProviderID& agent) {
    choice_.agent = agent;
    exportNote_.clear();
}

void HistoryPageController::chooseRange(ChartRange range) {
    preferences_.setString(rangeKey, std::string(storedText(range)));
    exportNote_.clear();
}

void HistoryPageController::toggle(const std::string& windowID) {
    if (windowID.empty()) {
        choice_.comparesEarlier = !choice_.comparesEarlier;
        return;
    }
    const auto agent = shownAgent(store_.state(), choice_);
    const auto shown = shownWindowIDs(store_.state(), currentChoice());
    const bool isShown = std::ranges::find(shown, windowID) != shown.end();
    if (agent && (!isShown || shown.size() > 1)) {
        choice_.shown[{*agent, windowID}] = !isShown;
    }
}

std::string HistoryPageController::exportText(HistoryExportFormat format, Instant now) const {
    const HistoryPageChoice choice = currentChoice();
    const auto agent = shownAgent(store_.state(), choice);
    if (!agent) {
        return {};
    }
    return historyExportText(store_.history(), *agent, shownWindowIDs(store_.state(), choice),
                             now - length(choice.range), now, format);
}

std::string HistoryPageController::exportName(Instant now, const TimeZone& zone) const {
    const auto agent = shownAgent(store_.state(), choice_);
    return historyExportName(agent.value_or(AgentProviderID()), now, zone);
}

void HistoryPageController::setExportNote(std::string note, bool failed) {
    exportNote_ = std::move(note);
    exportFailed_ = failed;
}

} // namespace vellmark
