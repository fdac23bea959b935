#include "presentation/AgentBlockContent.h"

#include "model/UsageRules.h"
#include "model/UsageTexts.h"
#include "presentation/AgentStanding.h"
#include "probes/ProviderRegistry.h"
#include "text/Formatting.h"
#include "text/TerminalText.h"

#include <algorithm>

namespace vellmark {
namespace {

using ErrorKind = UsageProviderError::Kind;

std::string_view buttonKey(WayOut wayOut) {
    switch (wayOut) {
    case WayOut::readAgain:
    case WayOut::update:
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

/// `restsUntil`: when the agent is asked again by itself, where that is later than usual.
FailureContent failureContent(const AgentProviderID& agent, const UsageProviderError& error,
                              std::optional<Instant> restsUntil, Instant now,
                              const Localization& words) {
    const WayOut way = wayOutOf(agent, error.kind());
    FailureContent failure{.agent = agent,
                           .reason = error.message(words),
                           .wayOut = way,
                           .buttonTitle = words.text(buttonKey(way))};
    if (restsUntil && *restsUntil > now) {
        if (!failure.reason.ends_with('.')) {
            failure.reason += ".";
        }
        failure.reason +=
            " " + words.format("popover.failure.next", {instantText(*restsUntil, now, words)});
    }
    return failure;
}

AgentBlockContent::State blockState(const AgentUsageSnapshot& snapshot,
                                    const AgentStanding& standing) {
    const bool hasFigures = !snapshot.windows.empty() || !snapshot.balances.empty();
    if (snapshot.error) {
        return hasFigures ? AgentBlockContent::State::stale : AgentBlockContent::State::failed;
    }
    switch (snapshot.source) {
    case SnapshotSource::loading:
        return AgentBlockContent::State::loading;
    case SnapshotSource::stale:
        return AgentBlockContent::State::stale;
    case SnapshotSource::live:
        break;
    }
    return standing.isOld ? AgentBlockContent::State::stale : AgentBlockContent::State::live;
}

BalanceRowContent balanceRow(const BalanceInfo& balance, const Localization& words) {
    BalanceRowContent row{.label = words.text("balance.credits")};
    const std::string amount = moneyText(balance.amount, balance.currencyCode, words);
    row.value = words.format("balance.remaining", {amount});
    if (balance.limit) {
        row.detail =
            words.format("balance.limit", {moneyText(*balance.limit, balance.currencyCode, words)});
    }
    return row;
}

BalanceRowContent creditRow(const CreditInfo& credit, const Localization& words) {
    BalanceRowContent row{.label = words.text("balance.extraCredit")};
    row.detail = creditText(credit, words);
    return row;
}

/// What has been reached, where the windows do not tell when it will be over.
std::string_view reachedKey(const UsageAllowance& allowance) {
    struct Reached {
        std::string_view type;
        std::string_view key;
    };
    static constexpr Reached kinds[] = {
        {"workspace_owner_credits_depleted", "allowance.reached.credits"},
        {"workspace_member_credits_depleted", "allowance.reached.credits"},
        {"workspace_owner_usage_limit_reached", "allowance.reached.workspaceLimit"},
        {"workspace_member_usage_limit_reached", "allowance.reached.workspaceLimit"},
        {"spend_control_reached", "allowance.reached.spendingLimit"},
    };
    for (const Reached& kind : kinds) {
        if (allowance.reachedType == kind.type) {
            return kind.key;
        }
    }
    return "allowance.usedUp.forNow";
}

/// "Used up", "Codex refuses until 4:15 PM".
BalanceRowContent usedUpRow(const AgentUsageSnapshot& snapshot, Instant now,
                            const Localization& words) {
    return {.label = words.text("allowance.usedUp"),
            .value = {},
            .detail = refusalText(snapshot, now, words),
            .warns = true};
}

/// "Banked resets", "2", "· next expires on Nov 26, 5:20 PM".
BalanceRowContent bankedResetsRow(const UsageAllowance& allowance, Instant now,
                                  const Localization& words) {
    BalanceRowContent row{.label = words.text("allowance.bankedResets"),
                          .value = integerText(*allowance.bankedResets, words),
                          .detail = {}};
    if (const auto& expiry = allowance.bankedResetExpiresAt; expiry && *expiry > now) {
        const bool isToday = isSameDay(*expiry, now, words);
        row.detail = words.format(isToday ? "allowance.bankedResets.expiresAt"
                                          : "allowance.bankedResets.expiresOn",
                                  {instantText(*expiry, now, words)});
    }
    return row;
}

std::string sourceText(const AgentUsageSnapshot& snapshot, Instant readAt, Instant now,
                       const Localization& words) {
    const ProviderDescriptor* descriptor = providerDescriptor(snapshot.id);
    const std::string source =
        descriptor ? words.text(descriptor->sourceKey) : snapshot.id.rawValue;
    const Seconds age = now - readAt;
    if (age < Seconds(60)) {
        return words.format("popover.source.justNow", {source});
    }
    return words.format(snapshot.mayBeNewer ? "popover.source.atMost" : "popover.source",
                        {roughDurationText(age, words), source});
}

void setStatus(AgentBlockContent& block, const AgentUsageSnapshot& snapshot,
               const AgentStanding& standing, Instant now, const Localization& words,
               std::string_view loadingKey) {
    switch (block.state) {
    case AgentBlockContent::State::loading:
        block.statusText = words.text(loadingKey);
        block.dot = StatusColorRole::refreshing;
        return;
    case AgentBlockContent::State::stale:
        block.statusText = ageText(snapshot, standing.readAt, now, words);
        block.showsClock = true;
        return;
    case AgentBlockContent::State::live:
    case AgentBlockContent::State::failed:
        block.statusText =
            standing.isDue() ? words.text("health.due") : healthText(block.health, words);
        block.dot = statusColorRole(block.health);
        return;
    }
}

void addRows(AgentBlockContent& block, const AgentUsageSnapshot& snapshot, const UsageState& state,
             const AgentStanding& standing, Instant now, const Localization& words) {
    for (std::size_t index = 0; index < snapshot.windows.size(); ++index) {
        const UsageWindow& window = snapshot.windows[index];
        block.rows.push_back(usageRowContent(window, standing.windows[index],
                                             state.recentPointsOf(snapshot.id, window.id),
                                             state.firstFigure, now, words));
    }
    if (isUsedUp(snapshot)) {
        block.balances.push_back(usedUpRow(snapshot, now, words));
    }
    for (const BalanceInfo& balance : snapshot.balances) {
        // The credit line tells the same in the agent's own words.
        if (balance.id != extraUsageBalanceID || !snapshot.credit) {
            block.balances.push_back(balanceRow(balance, words));
        }
    }
    if (snapshot.credit) {
        block.balances.push_back(creditRow(*snapshot.credit, words));
    }
    if (snapshot.allowance && snapshot.allowance->bankedResets.value_or(0) > 0) {
        block.balances.push_back(bankedResetsRow(*snapshot.allowance, now, words));
    }
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
    // An agent that knows more kinds names a window for each pool of models, not for each kind.
    return static_cast<int>(std::clamp<std::size_t>(kinds, 2, 3));
}

/// What is doubtful about the reading, and what the agent told beside it. How it was read and how
/// long that took is for the log alone.
std::vector<std::string> notesOf(const AgentUsageSnapshot& snapshot, const Localization& words) {
    std::vector<std::string> notes;
    bool saysWhatIsMissing = false;
    for (const SnapshotNote& note : snapshot.notes) {
        if (const auto* missing = std::get_if<SnapshotNote::ClaudeEndMarkerMissing>(&note.value)) {
            saysWhatIsMissing = true;
            notes.push_back(words.format("log.claude.endMarkerMissing", {missing->variant}));
        } else if (const auto* untold = std::get_if<SnapshotNote::AgeNotTold>(&note.value)) {
            notes.push_back(words.format("log.agent.ageNotTold", {singleLine(untold->version)}));
        } else if (const auto* said = std::get_if<SnapshotNote::AgentSays>(&note.value)) {
            notes.push_back(words.format("log.agent.says", {singleLine(said->text)}));
        } else if (std::holds_alternative<SnapshotNote::StatusLine>(note.value)) {
            notes.push_back(words.text("statusLine.note"));
        }
    }
    if (snapshot.isIncomplete && !saysWhatIsMissing) {
        notes.push_back(words.text("popover.incomplete"));
    }
    return notes;
}

} // namespace

std::string refusalText(const AgentUsageSnapshot& snapshot, Instant now,
                        const Localization& words) {
    const std::string name = agentShortName(snapshot.id, words);
    const std::optional<Instant> until = usedUpUntil(snapshot, now);
    return until ? words.format("allowance.usedUp.until", {name, instantText(*until, now, words)})
                 : words.format(reachedKey(*snapshot.allowance), {name});
}

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
    const AgentStanding standing = standingOf(snapshot, state, now);
    AgentBlockContent block{.id = snapshot.id,
                            .name = agentShortName(snapshot.id, words),
                            .plan = planText(snapshot),
                            .account = snapshot.accountLabel.value_or(""),
                            .state = blockState(snapshot, standing),
                            .health = standing.health};
    setStatus(block, snapshot, standing, now, words, loadingKey);
    if (block.state == AgentBlockContent::State::loading) {
        block.boneRows = expectedRows(snapshot.id);
    } else {
        addRows(block, snapshot, state, standing, now, words);
    }
    block.notes = notesOf(snapshot, words);
    if (snapshot.error) {
        block.failure = failureContent(snapshot.id, *snapshot.error,
                                       state.restsUntilOf(snapshot.id), now, words);
    }
    if (block.state == AgentBlockContent::State::live ||
        block.state == AgentBlockContent::State::stale) {
        block.sourceText = sourceText(snapshot, standing.readAt, now, words);
    }

    block.accessibilityText =
        words.format("popover.agent.accessibility", {block.name, block.statusText});
    if (block.failure) {
        block.accessibilityText += ". " + block.failure->reason;
    }
    block.accessibilityDetail = figuresText(block, words);
    return block;
}

} // namespace vellmark
