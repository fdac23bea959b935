#include "presentation/AgentBlockContent.h"

#include "model/UsageTexts.h"
#include "text/Formatting.h"
#include "text/TerminalText.h"

#include <algorithm>

namespace vellmark {
namespace {

using Kind = UsageProviderError::Kind;

WayOut wayOut(const UsageProviderError& error) {
    switch (error.kind()) {
    case Kind::executableMissing:
        return WayOut::install;
    case Kind::claudeNotLoggedIn:
    case Kind::antigravityNotLoggedIn:
        return WayOut::logIn;
    case Kind::antigravityIneligible:
        return WayOut::openSettings;
    default:
        return WayOut::readAgain;
    }
}

std::string_view buttonKey(WayOut wayOut) {
    switch (wayOut) {
    case WayOut::readAgain:
        return "popover.failure.readAgain";
    case WayOut::logIn:
        return "popover.failure.logIn";
    case WayOut::install:
        return "popover.failure.install";
    case WayOut::openSettings:
        return "popover.failure.openSettings";
    case WayOut::none:
        break;
    }
    return {};
}

FailureContent failureContent(const UsageProviderError& error, const Localization& words) {
    const WayOut way = wayOut(error);
    return {
        .reason = error.message(words), .wayOut = way, .buttonTitle = words.text(buttonKey(way))};
}

AgentBlockContent::State blockState(const AgentUsageSnapshot& snapshot) {
    const bool hasFigures = !snapshot.windows.empty() || !snapshot.balances.empty();
    if (snapshot.error)
        return hasFigures ? AgentBlockContent::State::stale : AgentBlockContent::State::failed;
    switch (snapshot.source) {
    case SnapshotSource::loading:
        return AgentBlockContent::State::loading;
    case SnapshotSource::stale:
        return AgentBlockContent::State::stale;
    case SnapshotSource::live:
        break;
    }
    return AgentBlockContent::State::live;
}

BalanceRowContent balanceRow(const BalanceInfo& balance, const Localization& words) {
    BalanceRowContent row{.label = words.text("balance.credits")};
    const std::string amount = moneyText(balance.amount, balance.currencyCode, words);
    row.value = words.format("usage.remaining", {amount});
    if (balance.limit)
        row.detail =
            words.format("balance.limit", {moneyText(*balance.limit, balance.currencyCode, words)});
    return row;
}

BalanceRowContent creditRow(const CreditInfo& credit, const Localization& words) {
    BalanceRowContent row{.label = words.text("balance.extraCredit")};
    row.detail = creditText(credit, words);
    return row;
}

/// When the shown figures were read.
Instant readingTime(const AgentUsageSnapshot& snapshot, const UsageState& state) {
    const auto success = state.lastSuccess.find(snapshot.id);
    return success != state.lastSuccess.end() ? success->second : snapshot.updatedAt;
}

std::string sourceText(const AgentUsageSnapshot& snapshot, Instant readAt, Instant now,
                       const Localization& words) {
    const ProviderDescriptor* descriptor = providerDescriptor(snapshot.id);
    const std::string source =
        descriptor ? words.text(descriptor->sourceKey) : snapshot.id.rawValue;
    const Seconds age = now - readAt;
    if (age < Seconds(60))
        return words.format("popover.source.justNow", {source});
    return words.format("popover.source", {roughDurationText(age, words), source});
}

void setStatus(AgentBlockContent& block, Instant readAt, Instant now, const Localization& words,
               std::string_view loadingKey) {
    switch (block.state) {
    case AgentBlockContent::State::loading:
        block.statusText = words.text(loadingKey);
        block.dot = StatusColorRole::refreshing;
        return;
    case AgentBlockContent::State::stale:
        block.statusText = words.format(
            "popover.stale", {roughDurationText(std::max(now - readAt, Seconds(0)), words)});
        block.showsClock = true;
        return;
    case AgentBlockContent::State::live:
    case AgentBlockContent::State::failed:
        block.statusText = healthText(block.health, words);
        block.dot = statusColorRole(block.health);
        return;
    }
}

void addRows(AgentBlockContent& block, const AgentUsageSnapshot& snapshot, const UsageState& state,
             Instant now, const Localization& words) {
    const bool isStale = block.state == AgentBlockContent::State::stale;
    for (const UsageWindow& window : snapshot.windows)
        block.rows.push_back(usageRowContent(
            window, isStale, state.recentPointsOf(snapshot.id, window.id), now, words));
    for (const BalanceInfo& balance : snapshot.balances)
        block.balances.push_back(balanceRow(balance, words));
    if (snapshot.credit)
        block.balances.push_back(creditRow(*snapshot.credit, words));
}

/// "Session: 46% left. Resets in 2 h 12 min · 5:00 PM. Week: …"
std::string figuresText(const AgentBlockContent& block, const Localization& words) {
    std::string text;
    const auto add = [&](const std::string& label, const std::string& figure) {
        text += (text.empty() ? "" : ". ");
        text += words.format("popover.figure.accessibility", {label, figure});
    };
    for (const UsageRowContent& row : block.rows) {
        add(row.fullLabel, row.value);
        text += ". " + row.accessibilityDetail;
    }
    for (const BalanceRowContent& balance : block.balances) {
        const bool hasBoth = !balance.value.empty() && !balance.detail.empty();
        add(balance.label, balance.value + (hasBoth ? " " : "") + balance.detail);
    }
    return text;
}

/// The usual number of windows, so that the first reading finds its place prepared.
int expectedRows(const AgentProviderID& id) {
    const ProviderDescriptor* descriptor = providerDescriptor(id);
    const std::size_t kinds = descriptor ? descriptor->windowKinds.size() : 0;
    return static_cast<int>(std::clamp<std::size_t>(kinds, 2, 4));
}

/// How long each part of the reading took is for the log alone.
std::vector<std::string> notesOf(const AgentUsageSnapshot& snapshot, const Localization& words) {
    std::vector<std::string> notes;
    for (const SnapshotNote& note : snapshot.notes) {
        if (const auto* missing = std::get_if<SnapshotNote::ClaudeEndMarkerMissing>(&note.value))
            notes.push_back(words.format("log.claude.endMarkerMissing", {missing->variant}));
    }
    return notes;
}

} // namespace

std::string agentName(const AgentProviderID& id, const Localization& words) {
    const ProviderDescriptor* descriptor = providerDescriptor(id);
    return descriptor ? words.text(descriptor->nameKey) : singleLine(id.rawValue);
}

std::string agentShortName(const AgentProviderID& id, const Localization& words) {
    const ProviderDescriptor* descriptor = providerDescriptor(id);
    return descriptor ? words.text(descriptor->shortNameKey) : singleLine(id.rawValue);
}

std::optional<UsageHealth> badgeOf(UsageHealth health) {
    const bool needsAttention = health == UsageHealth::attention || health == UsageHealth::critical;
    return needsAttention ? std::optional(health) : std::nullopt;
}

AgentBlockContent agentBlockContent(const AgentUsageSnapshot& snapshot, const UsageState& state,
                                    Instant now, const Localization& words,
                                    std::string_view loadingKey) {
    AgentBlockContent block{.id = snapshot.id,
                            .name = agentShortName(snapshot.id, words),
                            .plan = snapshot.plan.value_or(""),
                            .account = snapshot.accountLabel.value_or(""),
                            .state = blockState(snapshot),
                            .health = health(snapshot, now)};
    const Instant readAt = readingTime(snapshot, state);
    setStatus(block, readAt, now, words, loadingKey);
    if (block.state == AgentBlockContent::State::loading)
        block.boneRows = expectedRows(snapshot.id);
    else
        addRows(block, snapshot, state, now, words);
    block.notes = notesOf(snapshot, words);
    if (snapshot.error)
        block.failure = failureContent(*snapshot.error, words);
    if (block.state == AgentBlockContent::State::live ||
        block.state == AgentBlockContent::State::stale)
        block.sourceText = sourceText(snapshot, readAt, now, words);

    block.accessibilityText =
        words.format("popover.agent.accessibility", {block.name, block.statusText});
    if (block.failure)
        block.accessibilityText += ". " + block.failure->reason;
    block.accessibilityDetail = figuresText(block, words);
    return block;
}

} // namespace vellmark
