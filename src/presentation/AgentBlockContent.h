#pragma once

#include "presentation/StatusColor.h"
#include "presentation/UsageRowContent.h"
#include "probes/WayOut.h"
#include "store/UsageState.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vellmark {

/// Why an agent could not be read, and the way out of it.
struct FailureContent {
    AgentProviderID agent;
    std::string reason;
    WayOut wayOut = WayOut::none;
    /// The button's words; empty for `none`.
    std::string buttonTitle;

    bool operator==(const FailureContent&) const = default;
};

/// What an agent tells beside its windows: "Credits", "$16.80 left", "of $20.00"; a credit line in
/// its own words; that it refuses to work, and until when; the resets in hand.
struct BalanceRowContent {
    std::string label;
    /// In the type of values; may be empty.
    std::string value;
    /// In small type beside the value; may be empty.
    std::string detail;
    /// The user cannot go on: the label is in the colour of what is critical.
    bool warns = false;

    bool operator==(const BalanceRowContent&) const = default;
};

/// One agent with everything that is known about it: a block of the popover's overview, a summary
/// card, or the body of the agent's own tab.
struct AgentBlockContent {
    enum class State {
        loading, ///< no reading yet: bones in place of the rows
        live,
        stale,  ///< an old reading, with its age; `failure` tells why where that is known
        failed, ///< no figures; `failure` tells why
    };
    AgentProviderID id;
    std::string name;
    /// May be empty, like the account.
    std::string plan;
    std::string account;
    State state = State::loading;
    UsageHealth health = UsageHealth::unavailable;
    /// At the end of the head: the health's word, "Reset due", "Reading values …", or "34 min old"
    /// (which has the icon "clock" in place of the dot).
    std::string statusText;
    StatusColorRole dot = StatusColorRole::none;
    bool showsClock = false;
    std::vector<UsageRowContent> rows;
    /// How many rows of bones to show while loading.
    int boneRows = 0;
    std::vector<BalanceRowContent> balances;
    /// What is doubtful about the reading: "End of the usage page not recognised; …".
    std::vector<std::string> notes;
    std::optional<FailureContent> failure;
    /// "Read 2 min ago through the Claude Code CLI"; empty before the first reading.
    std::string sourceText;
    /// Name of the block for assistive software; the detail, its figures, is its description.
    std::string accessibilityText;
    std::string accessibilityDetail;

    bool operator==(const AgentBlockContent&) const = default;
};

/// `loadingKey`: what the status says while the first values are read.
AgentBlockContent agentBlockContent(const AgentUsageSnapshot& snapshot, const UsageState& state,
                                    Instant now, const Localization& words,
                                    std::string_view loadingKey = "popover.loadingValues");

/// That an agent which refuses to work does so, and until when: "Codex refuses until 4:15 PM".
std::string refusalText(const AgentUsageSnapshot& snapshot, Instant now, const Localization& words);

/// The badge on an agent's logo: only `attention` and `critical` have one.
std::optional<UsageHealth> badgeOf(UsageHealth health);

/// The agent's name in the user's words, in full and as it is called where little room is; an
/// unknown agent is called by its identifier.
std::string agentName(const AgentProviderID& id, const Localization& words);
std::string agentShortName(const AgentProviderID& id, const Localization& words);

} // namespace vellmark
