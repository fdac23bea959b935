#include "presentation/OverviewPageContent.h"

#include "model/UsageTexts.h"
#include "presentation/AgentStanding.h"
#include "presentation/UsageVerdict.h"
#include "store/ActivityTexts.h"
#include "text/Formatting.h"

#include <algorithm>

namespace vellmark {
namespace {

/// Abbreviations and what goes on have a stop of their own.
std::string sentence(const std::string& text, const Localization& words) {
    return text.ends_with('.') || text.ends_with("…")
               ? text
               : words.format("overview.verdict.sentence", {text});
}

/// When a window runs out and how long that is before its reset, or that it is used up; else what
/// is left of it.
std::string verdictSentence(const UsageWindow& window, const WindowStanding& standing,
                            std::span<const UsagePoint> recent, FirstFigure first, Instant now,
                            const Localization& words) {
    if (standing.kind == WindowStanding::Kind::usedUp) {
        return window.resetsAt ? words.format("overview.verdict.usedUpUntil",
                                              {instantText(*window.resetsAt, now, words)})
                               : words.text("overview.verdict.usedUp");
    }
    const std::optional<Forecast> outlook = forecast(window, standing.judgedAt, recent);
    if (!outlook || !outlook->emptyAt || *outlook->emptyAt <= now || !window.resetsAt) {
        const UsageRowContent row = usageRowContent(window, standing, recent, first, now, words);
        return words.format(first == FirstFigure::used ? "overview.verdict.used"
                                                       : "overview.verdict.left",
                            {row.figure, row.reset});
    }
    const Instant reset = *window.resetsAt;
    return words.format(isSameDay(reset, now, words) ? "overview.verdict.runsOut"
                                                     : "overview.verdict.runsOutOn",
                        {forecastDurationText(*outlook->emptyAt - now, words),
                         roughDurationText(reset - *outlook->emptyAt, words, SpanForm::alone),
                         instantText(reset, now, words)});
}

/// A check mark only where every agent was read lately.
std::string verdictIcon(const UsageState& state, UsageHealth worst, Instant now) {
    const bool isUnreadable =
        std::ranges::any_of(state.snapshots, [](const AgentUsageSnapshot& snapshot) {
            return snapshot.error.has_value();
        });
    if (isUnreadable || worst == UsageHealth::attention || worst == UsageHealth::critical) {
        return "exclamationmark.triangle.fill";
    }
    const bool isOld =
        std::ranges::any_of(state.snapshots, [&](const AgentUsageSnapshot& snapshot) {
            return standingOf(snapshot, state, now).isOld;
        });
    return worst == UsageHealth::healthy && !isOld ? "checkmark" : "info.circle";
}

/// The worst window in a sentence, or that nothing is wrong.
VerdictContent verdict(const UsageState& state, Instant now, const Localization& words) {
    const UsageHealth worst = worstHealth(state, now);
    VerdictContent content{.tone = worst,
                           .icon = verdictIcon(state, worst, now),
                           .text = sentence(verdictText(state, now, words), words)};
    const std::optional<PressingWindow> pressing = mostPressingWindow(state, now);
    if ((worst != UsageHealth::attention && worst != UsageHealth::critical) || !pressing) {
        return content;
    }
    const AgentUsageSnapshot& snapshot = *pressing->snapshot;
    const UsageWindow& window = *pressing->window;
    content.subject = words.format("overview.verdict.subject", {agentShortName(snapshot.id, words),
                                                                windowLabel(window, words, true)});
    content.text =
        verdictSentence(window, pressing->standing, state.recentPointsOf(snapshot.id, window.id),
                        state.firstFigure, now, words);
    if (const std::string age = ageText(snapshot, pressing->standing, now, words); !age.empty()) {
        content.text = words.format("overview.verdict.aged", {content.text, sentence(age, words)});
    }
    return content;
}

/// What colour and icon say stands in words before it.
std::string spokenVerdict(const VerdictContent& verdict, const Localization& words) {
    const std::string said =
        verdict.subject.empty()
            ? verdict.text
            : words.format("overview.verdict.spoken.subject", {verdict.subject, verdict.text});
    return words.format("overview.verdict.spoken", {healthText(verdict.tone, words), said});
}

} // namespace

OverviewPageContent overviewPageContent(const UsageState& state, Instant now,
                                        const Localization& words) {
    OverviewPageContent content;
    content.head = refreshablePageHead({"nav.overview", "overview.subtitle"}, state, words);
    content.verdict = verdict(state, now, words);
    content.verdict.accessibilityText = spokenVerdict(content.verdict, words);
    if (state.unwritten) {
        content.storage =
            sentence(ActivityTexts::storageTrouble(*state.unwritten, words).text, words);
    }
    for (const AgentUsageSnapshot& snapshot : state.snapshots) {
        content.cards.push_back(
            agentBlockContent(snapshot, state, now, words, "overview.loadingQuotas"));
    }
    if (state.snapshots.empty()) {
        content.noAgents = noAgentsContent(words);
    }
    return content;
}

} // namespace vellmark
