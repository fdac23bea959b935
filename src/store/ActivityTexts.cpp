#include "store/ActivityTexts.h"

#include "model/UsageTexts.h"
#include "probes/ProviderRegistry.h"
#include "text/Formatting.h"
#include "text/TerminalText.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace vellmark::ActivityTexts {

namespace {

using Level = ActivityEntry::Level;

std::string triggerText(RefreshTrigger trigger, const Localization& words) {
    switch (trigger) {
    case RefreshTrigger::launch:
        return words.text("log.trigger.launch");
    case RefreshTrigger::timer:
        return words.text("log.trigger.timer");
    case RefreshTrigger::manual:
        return words.text("log.trigger.manual");
    case RefreshTrigger::wake:
        return words.text("log.trigger.wake");
    case RefreshTrigger::window:
        return words.text("log.trigger.window");
    case RefreshTrigger::settings:
        return words.text("log.trigger.settings");
    }
    return {};
}

std::string secondsText(Seconds span, const Localization& words) {
    return words.format("log.seconds", {decimalText(span.count(), words)});
}

std::string wholeSecondsText(Seconds span, const Localization& words) {
    return words.format("log.seconds", {integerText(std::llround(span.count()), words)});
}

std::string shortName(const AgentProviderID& id, const Localization& words) {
    const ProviderDescriptor* descriptor = providerDescriptor(id);
    return descriptor ? words.text(descriptor->shortNameKey) : id.rawValue;
}

std::string remainingText(const UsageWindow& window, const Localization& words) {
    const double remaining = std::max(remainingPercent(window), 0.0);
    return words.format("usage.remaining", {percentText(remaining, words)});
}

std::string figuresText(const AgentUsageSnapshot& snapshot, const Localization& words) {
    std::string figures;
    for (const UsageWindow& window : snapshot.windows) {
        if (!figures.empty()) {
            figures += ", ";
        }
        figures += windowLabel(window, words, true) + " " + remainingText(window, words);
    }
    return figures.empty() ? words.text("log.agent.noWindows") : figures;
}

/// The name of a way of reading; one that has none is called as it is.
std::string wayText(const std::string& way, const Localization& words) {
    const std::string key = "log.agent.way." + way;
    const std::string text = words.text(key);
    return text == key ? singleLine(way) : text;
}

ActivityEntry aboutAgent(Level level, const AgentProviderID& id, std::string text) {
    return {.level = level, .agent = id, .text = std::move(text)};
}

ActivityEntry aboutProgram(Level level, std::string text) {
    return {.level = level, .agent = std::nullopt, .text = std::move(text)};
}

} // namespace

ActivityEntry refreshStarted(RefreshTrigger trigger, const Localization& words) {
    return aboutProgram(Level::info,
                        words.format("log.refresh.started", {triggerText(trigger, words)}));
}

ActivityEntry refreshFinished(RefreshTrigger trigger, std::size_t read, std::size_t asked,
                              Seconds elapsed, const Localization& words) {
    return aboutProgram(
        Level::info, words.format("log.refresh.finished",
                                  {triggerText(trigger, words), static_cast<std::int64_t>(read),
                                   static_cast<std::int64_t>(asked), secondsText(elapsed, words)}));
}

ActivityEntry refreshAborted(const Localization& words) {
    return aboutProgram(Level::notice, words.text("log.refreshAborted.terminated"));
}

ActivityEntry agentRead(const AgentUsageSnapshot& snapshot, Seconds elapsed,
                        const Localization& words) {
    return aboutAgent(Level::info, snapshot.id,
                      words.format("log.agent.read",
                                   {figuresText(snapshot, words), secondsText(elapsed, words)}));
}

ActivityEntry agentFailed(const AgentProviderID& id, const UsageProviderError& error,
                          const Localization& words) {
    return aboutAgent(Level::error, id, error.message(words));
}

ActivityEntry agentRecovered(const AgentProviderID& id, int failedAttempts,
                             const Localization& words) {
    return aboutAgent(Level::info, id,
                      failedAttempts == 1 ? words.text("log.agent.recovered")
                                          : words.format("log.agent.recovered.several",
                                                         {std::int64_t{failedAttempts}}));
}

ActivityEntry agentRetried(const AgentProviderID& id, Seconds delay, const Localization& words) {
    return aboutAgent(Level::notice, id,
                      words.format("log.agent.retry", {wholeSecondsText(delay, words)}));
}

std::vector<ActivityEntry> notes(const AgentUsageSnapshot& snapshot, const Localization& words) {
    std::vector<ActivityEntry> entries;
    for (const SnapshotNote& note : snapshot.notes) {
        if (const auto* missing = std::get_if<SnapshotNote::ClaudeEndMarkerMissing>(&note.value)) {
            entries.push_back(
                aboutAgent(Level::notice, snapshot.id,
                           words.format("log.claude.endMarkerMissing", {missing->variant})));
        } else if (const auto* timing = std::get_if<SnapshotNote::ClaudeTiming>(&note.value)) {
            entries.push_back(
                aboutAgent(Level::info, snapshot.id,
                           words.format("log.claude.timing",
                                        {timing->waitMs, timing->startMs, timing->statusMs,
                                         timing->usageMs, timing->quietMs, timing->endMs})));
        } else if (const auto* way = std::get_if<SnapshotNote::ReadingWay>(&note.value)) {
            const Seconds took(static_cast<double>(way->tookMs) / 1000);
            entries.push_back(
                aboutAgent(Level::info, snapshot.id,
                           words.format("log.agent.way",
                                        {wayText(way->way, words), secondsText(took, words)})));
        } else if (const auto* untold = std::get_if<SnapshotNote::AgeNotTold>(&note.value)) {
            entries.push_back(
                aboutAgent(Level::notice, snapshot.id,
                           words.format("log.agent.ageNotTold", {singleLine(untold->version)})));
        } else if (std::holds_alternative<SnapshotNote::ReadingCosts>(note.value)) {
            entries.push_back(
                aboutAgent(Level::notice, snapshot.id, words.text("log.agent.readingCosts")));
        } else if (const auto* said = std::get_if<SnapshotNote::AgentSays>(&note.value)) {
            entries.push_back(aboutAgent(Level::info, snapshot.id,
                                         words.format("log.agent.says", {singleLine(said->text)})));
        }
    }
    return entries;
}

ActivityEntry implausible(const AgentProviderID& id, const ImplausibleFigure& figure,
                          const Localization& words) {
    using Kind = ImplausibleFigure::Kind;
    const char* const key = figure.kind == Kind::used       ? "log.figure.used"
                            : figure.kind == Kind::duration ? "log.figure.duration"
                                                            : "log.figure.reset";
    return aboutAgent(Level::notice, id, words.format(key, {windowLabel(figure.window, words)}));
}

std::vector<ActivityEntry> turnedCritical(const AgentUsageSnapshot* before,
                                          const AgentUsageSnapshot& after, Instant now,
                                          const Localization& words) {
    std::vector<ActivityEntry> entries;
    for (const UsageWindow& window : after.windows) {
        if (severity(window, now) != Severity::critical) {
            continue;
        }
        const UsageWindow* earlier = nullptr;
        if (before) {
            const auto found = std::ranges::find(before->windows, window.id, &UsageWindow::id);
            earlier = found == before->windows.end() ? nullptr : &*found;
        }
        if (!earlier || severity(*earlier, before->updatedAt) != Severity::critical) {
            entries.push_back(
                aboutAgent(Level::notice, after.id,
                           words.format("log.window.critical", {windowLabel(window, words),
                                                                remainingText(window, words)})));
        }
    }
    return entries;
}

std::vector<ActivityEntry> allowanceChanged(const AgentUsageSnapshot* before,
                                            const AgentUsageSnapshot& after,
                                            const Localization& words) {
    const bool isUsed = isUsedUp(after);
    if (isUsed == (before && isUsedUp(*before))) {
        return {};
    }
    // That it is back counts only when the agent says so itself.
    if (!isUsed && !(after.allowance && after.allowance->ordinaryUsageAllowed == true)) {
        return {};
    }
    return {aboutAgent(Level::notice, after.id,
                       words.text(isUsed ? "log.agent.usedUp" : "log.agent.backAgain"))};
}

ActivityEntry agentSwitched(const AgentProviderID& id, bool enabled, const Localization& words) {
    return aboutAgent(
        Level::info, id,
        words.text(enabled ? "log.settings.agentEnabled" : "log.settings.agentDisabled"));
}

ActivityEntry orderChanged(const std::vector<AgentProviderID>& order, const Localization& words) {
    std::string names;
    for (const AgentProviderID& id : order) {
        names += (names.empty() ? "" : ", ") + shortName(id, words);
    }
    return aboutProgram(Level::info, words.format("log.settings.order", {names}));
}

ActivityEntry woke(Seconds hold, const Localization& words) {
    return aboutProgram(Level::info, words.format("log.wake", {wholeSecondsText(hold, words)}));
}

ActivityEntry storageTrouble(const StorageTrouble::News& news, const Localization& words) {
    switch (news.kind) {
    case StorageTrouble::Kind::failed:
        return aboutProgram(Level::error,
                            words.format("log.storage.failed", {news.error.message()}));
    case StorageTrouble::Kind::inTheWay:
        return aboutProgram(Level::error,
                            words.format("log.storage.inTheWay", {news.file.string()}));
    case StorageTrouble::Kind::recovered:
        return aboutProgram(Level::info, words.text("log.storage.recovered"));
    case StorageTrouble::Kind::repaired:
        return aboutProgram(Level::notice,
                            words.format("log.storage.repaired", {news.file.filename().string()}));
    case StorageTrouble::Kind::foreign:
        return aboutProgram(Level::error,
                            words.format("log.storage.foreign", {news.file.string()}));
    case StorageTrouble::Kind::undecoded:
        return aboutProgram(
            Level::notice,
            news.part.empty()
                ? words.format("log.storage.undecodedFile", {news.file.string()})
                : words.format("log.storage.undecoded",
                               {shortName(AgentProviderID(news.part), words), news.file.string()}));
    }
    return {};
}

std::string exportHeader(int days, Instant now, const TimeZone& zone, const Localization& words) {
    return words.format("log.export.title", {std::string(VELLMARK_VERSION)}) + "\n" +
           words.format("log.export.period",
                        {std::int64_t{days}, dateTimeText(now, words), zone.identifier()}) +
           "\n\n";
}

} // namespace vellmark::ActivityTexts
