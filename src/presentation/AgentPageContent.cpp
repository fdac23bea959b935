#include "presentation/AgentPageContent.h"

#include "model/UsageTexts.h"
#include "presentation/AgentStanding.h"
#include "probes/ProviderRegistry.h"
#include "probes/VersionNumber.h"
#include "text/Formatting.h"
#include "text/JoinedText.h"
#include "text/TerminalText.h"

#include <algorithm>
#include <utility>

namespace vellmark {
namespace {

std::string sourceName(const AgentProviderID& id, const Localization& words) {
    const ProviderDescriptor* descriptor = providerDescriptor(id);
    return descriptor ? words.text(descriptor->sourceKey) : std::string();
}

std::string secondsText(Seconds span, const Localization& words) {
    return words.format("log.seconds", {decimalText(span.count(), words)});
}

/// What `key` says of a span, or `justNowKey` of one that is over before it can be named.
std::string agoText(std::string_view key, std::string_view justNowKey, Seconds span,
                    const Localization& words) {
    return span < Seconds(60) ? words.text(justNowKey)
                              : words.format(key, {roughDurationText(span, words)});
}

/// When the figures were read; of figures whose age stands beside the name, when it was last tried.
std::string headAge(const AgentUsageSnapshot& snapshot, const AgentBlockContent& block,
                    Instant readAt, Instant now, const Localization& words) {
    using State = AgentBlockContent::State;
    if (snapshot.error) {
        return agoText("detail.triedAgo", "detail.triedJustNow", now - snapshot.updatedAt, words);
    }
    if (block.state != State::live) {
        return {};
    }
    return agoText(snapshot.mayBeNewer ? "detail.readAgo.atMost" : "detail.readAgo",
                   "detail.readJustNow", now - readAt, words);
}

PageHeadContent headContent(const AgentUsageSnapshot& snapshot, const AgentBlockContent& block,
                            const UsageState& state, Instant readAt, Instant now,
                            const Localization& words) {
    PageHeadContent head;
    head.title = block.name;
    head.subtitle =
        joined({block.account, block.plan, sourceName(snapshot.id, words)}, factSeparator);
    head.age = headAge(snapshot, block, readAt, now, words);
    head.isRefreshing = state.reading.contains(snapshot.id);
    head.refresh = {words.text(head.isRefreshing ? "header.refreshing" : "header.refresh"),
                    "arrow.clockwise", words.format("detail.refresh.help", {block.name})};
    head.refreshTitles = {words.text("header.refresh"), words.text("header.refreshing")};
    return head;
}

AgentWindowContent windowContent(const AgentUsageSnapshot& snapshot, UsageRowContent row,
                                 const AgentStanding& agent, const WindowStanding& standing,
                                 const AgentPageSources& sources, Instant now,
                                 const Localization& words) {
    AgentWindowContent content{.row = std::move(row)};
    // There is room for the whole name.
    content.row.label = content.row.fullLabel;
    content.statusText = standing.kind == WindowStanding::Kind::due
                             ? words.text("health.due")
                             : healthText(standing.health, words);
    content.dot = statusColorRole(standing.health);
    // A window that is older than the others tells its age beside its reset.
    if (agent.isOld) {
        content.statusText =
            joined({content.statusText, briefAgeText(snapshot, agent, now, words)}, factSeparator);
    }
    if (!content.row.forecast) {
        content.outlook = content.row.outlook;
    }
    content.chartTitle = words.text("detail.chart");
    content.chart = chartContent(sources.state, sources.history,
                                 {.agent = snapshot.id,
                                  .windowIDs = {content.row.windowID},
                                  .range = sources.range,
                                  .looksAhead = true},
                                 now, words);
    if (!sources.history.last({snapshot.id, content.row.windowID}, now)) {
        content.chartNote = words.text("detail.chart.none");
    }
    return content;
}

// --- how it is read

ReadingFactContent toolFact(const AgentProviderID& id, const AgentFacts* facts,
                            const Localization& words) {
    ReadingFactContent fact{.label = words.text("detail.cli"), .value = sourceName(id, words)};
    if (facts && facts->toolVersion) {
        const auto version = VersionNumber::parse(*facts->toolVersion);
        fact.value += (fact.value.empty() ? "" : " ") +
                      (version ? version->text() : singleLine(*facts->toolVersion));
    }
    return fact;
}

ReadingFactContent pathFact(const AgentPageSources& sources, const Localization& words) {
    ReadingFactContent fact{.label = words.text("detail.path")};
    const AgentFacts* facts = sources.facts;
    if (facts && facts->toolPath) {
        fact.value = singleLine(sources.machine.abbreviated(*facts->toolPath));
        fact.isPath = true;
        fact.copied = facts->toolPath->string();
        fact.copy = {words.text("detail.path.copy"), "doc.on.doc",
                     words.text("detail.path.copied")};
    } else {
        fact.value = words.text(facts ? "detail.path.missing" : "detail.path.searching");
    }
    return fact;
}

ReadingFactContent lastReadFact(const AgentUsageSnapshot& snapshot, const AgentBlockContent& block,
                                Instant readAt, Instant now, const Localization& words) {
    using State = AgentBlockContent::State;
    ReadingFactContent fact{.label = words.text("detail.lastRead")};
    if (block.state != State::live && block.state != State::stale) {
        fact.value = words.text("overview.notUpdated");
        return fact;
    }
    fact.value = agoText(snapshot.mayBeNewer ? "popover.stale.brief.atMost" : "detail.ago",
                         "detail.justNow", now - readAt, words);
    fact.detail = "· " + instantText(readAt, now, words);
    return fact;
}

template<class Note>
const Note* noteOf(const AgentUsageSnapshot& snapshot) {
    for (const SnapshotNote& note : snapshot.notes) {
        if (const auto* found = std::get_if<Note>(&note.value)) {
            return found;
        }
    }
    return nullptr;
}

/// "6.4 s", "· by screen session"; absent where nobody knows.
std::optional<ReadingFactContent> durationFact(const AgentUsageSnapshot& snapshot,
                                               const UsageState& state, const Localization& words) {
    const auto* way = noteOf<SnapshotNote::ReadingWay>(snapshot);
    const auto took = state.readingTook.find(snapshot.id);
    if (!way && took == state.readingTook.end()) {
        return std::nullopt;
    }
    ReadingFactContent fact{.label = words.text("detail.duration")};
    fact.value = secondsText(took != state.readingTook.end()
                                 ? took->second
                                 : Seconds(static_cast<double>(way->tookMs) / 1000),
                             words);
    if (way) {
        const std::string key = "log.agent.way." + way->way;
        const std::string name = words.text(key);
        fact.detail = "· " + (name == key ? singleLine(way->way) : name);
    }
    return fact;
}

void addPhases(ReadingCardContent& card, const SnapshotNote::ClaudeTiming& timing,
               const Localization& words) {
    const std::pair<std::string_view, std::int64_t> phases[] = {
        {"detail.phase.wait", timing.waitMs},     {"detail.phase.start", timing.startMs},
        {"detail.phase.status", timing.statusMs}, {"detail.phase.usage", timing.usageMs},
        {"detail.phase.quiet", timing.quietMs},   {"detail.phase.end", timing.endMs}};
    // What is no tenth of a second can neither be named nor seen.
    const auto counts = [](std::int64_t milliseconds) { return milliseconds >= 50; };
    double whole = 0;
    for (const auto& [key, milliseconds] : phases) {
        whole += counts(milliseconds) ? static_cast<double>(milliseconds) : 0;
    }
    std::vector<std::string> texts;
    for (const auto& [key, milliseconds] : phases) {
        if (counts(milliseconds)) {
            const auto span = static_cast<double>(milliseconds);
            const std::string name = words.text(key);
            texts.push_back(words.format("detail.phase", {name, decimalText(span / 1000, words)}));
            card.phases.push_back({name, span / whole});
        }
    }
    if (!texts.empty()) {
        card.phasesText = words.format("detail.phases", {joined(texts, factSeparator)});
    }
}

/// All agents with this one at the place of the one that is shown `step` places further; empty
/// where there is none.
std::vector<AgentProviderID> orderWithMoved(const UsageState& state, std::size_t shownIndex,
                                            int step) {
    const auto target = static_cast<std::ptrdiff_t>(shownIndex) + step;
    if (target < 0 || target >= static_cast<std::ptrdiff_t>(state.snapshots.size())) {
        return {};
    }
    std::vector<AgentProviderID> order = state.providerOrder;
    const auto own = std::ranges::find(order, state.snapshots[shownIndex].id);
    const auto other =
        std::ranges::find(order, state.snapshots[static_cast<std::size_t>(target)].id);
    if (own == order.end() || other == order.end()) {
        return {};
    }
    // Agents that are switched off keep their places between them.
    std::iter_swap(own, other);
    return order;
}

void addOrder(ReadingCardContent& card, const AgentUsageSnapshot& snapshot, const UsageState& state,
              const Localization& words) {
    const auto found = std::ranges::find(state.snapshots, snapshot.id, &AgentUsageSnapshot::id);
    if (state.snapshots.size() < 2 || found == state.snapshots.end()) {
        return;
    }
    const auto index = static_cast<std::size_t>(found - state.snapshots.begin());
    card.orderTitle = words.text("detail.order");
    card.position =
        words.format("detail.order.position", {static_cast<std::int64_t>(index + 1),
                                               static_cast<std::int64_t>(state.snapshots.size())});
    card.earlier = {words.text("detail.order.earlier"), "chevron.up", ""};
    card.later = {words.text("detail.order.later"), "chevron.down", ""};
    card.orderIfEarlier = orderWithMoved(state, index, -1);
    card.orderIfLater = orderWithMoved(state, index, 1);
}

ReadingCardContent readingCard(const AgentUsageSnapshot& snapshot, const AgentBlockContent& block,
                               const AgentPageSources& sources, Instant readAt, Instant now,
                               const Localization& words) {
    ReadingCardContent card;
    card.balancesTitle = words.text("detail.balances");
    card.title = words.text("detail.reading");
    card.recheck = {words.text("settings.cli.recheck"), "arrow.clockwise",
                    words.text("detail.recheck.help")};
    card.isRechecking = sources.isAskingForFacts;
    card.facts = {toolFact(snapshot.id, sources.facts, words), pathFact(sources, words),
                  lastReadFact(snapshot, block, readAt, now, words)};
    // The account at the head tells of a login.
    if (sources.facts && sources.facts->loggedIn == false) {
        card.facts.push_back(
            {.label = words.text("detail.login"), .value = words.text("detail.notLoggedIn")});
    }
    if (auto duration = durationFact(snapshot, sources.state, words)) {
        card.facts.push_back(std::move(*duration));
    }
    if (const auto* timing = noteOf<SnapshotNote::ClaudeTiming>(snapshot)) {
        addPhases(card, *timing, words);
    }
    addOrder(card, snapshot, sources.state, words);
    card.switchOff = {words.text("detail.switchOff"), "",
                      words.format("detail.switchOff.help", {block.name})};
    return card;
}

} // namespace

ChartRange agentPageRange(std::string_view stored) {
    const std::optional<ChartRange> range = chartRange(stored);
    const bool isOffered =
        range && std::ranges::find(agentPageRanges, *range) != agentPageRanges.end();
    return isOffered ? *range : agentPageRanges.front();
}

AgentPageContent agentPageContent(const AgentUsageSnapshot& snapshot,
                                  const AgentPageSources& sources, Instant now,
                                  const Localization& words) {
    const AgentStanding standing = standingOf(snapshot, sources.state, now);
    AgentPageContent content;
    content.agent = agentBlockContent(snapshot, sources.state, now, words, "detail.loading");
    content.head = headContent(snapshot, content.agent, sources.state, standing.readAt, now, words);
    content.reading = readingCard(snapshot, content.agent, sources, standing.readAt, now, words);
    content.reading.balances = std::exchange(content.agent.balances, {});
    std::vector<UsageRowContent> rows = std::exchange(content.agent.rows, {});
    for (std::size_t index = 0; index < rows.size(); ++index) {
        content.windows.push_back(windowContent(snapshot, std::move(rows[index]), standing,
                                                standing.windows[index], sources, now, words));
    }
    if (sources.state.readByHandOnly.contains(snapshot.id)) {
        content.agent.notes.push_back(words.text("detail.byHandOnly"));
    }
    content.range = sources.range;
    if (!content.windows.empty()) {
        for (const ChartRange range : agentPageRanges) {
            content.ranges.push_back(rangeText(range, words));
        }
        content.rangeTitle = words.text("detail.range");
    }
    return content;
}

} // namespace vellmark
