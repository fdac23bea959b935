#pragma once

#include "platform/Preferences.h"
#include "presentation/HistoryExport.h"
#include "presentation/HistoryPageContent.h"
#include "store/AgentUsageStore.h"

namespace vellmark {

/// What is chosen on the history page, the range as the preference "ChartRange". Main thread.
class HistoryPageController {
public:
    /// Both must outlive this.
    HistoryPageController(const AgentUsageStore& store, Preferences& preferences);

    HistoryPageContent content(Instant now, const Localization& words) const;

    void chooseAgent(const AgentProviderID& agent);
    void chooseRange(ChartRange range);
    /// Shows or hides a window, but never the last; empty means the time before.
    void toggle(const std::string& windowID);
    void leave() { exportNote_.clear(); }

    /// The figures that are shown, as text.
    std::string exportText(HistoryExportFormat format, Instant now) const;
    std::string exportName(Instant now, const TimeZone& zone) const;
    /// What the page says about the export; empty takes it away.
    void setExportNote(std::string note, bool failed);

private:
    HistoryPageChoice currentChoice() const;

    const AgentUsageStore& store_;
    Preferences& preferences_;
    HistoryPageChoice choice_;
    std::string exportNote_;
    bool exportFailed_ = false;
};

} // namespace vellmark
