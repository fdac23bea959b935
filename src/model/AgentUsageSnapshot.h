#pragma once

#include "model/AgentProviderID.h"
#include "model/UsageProviderError.h"
#include "model/UsageWindow.h"
#include "text/Instant.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace vellmark {

/// Identifies the balance that tells what is left of the extra usage an account may pay for.
inline constexpr const char* extraUsageBalanceID = "extra-usage";

/// A money balance of the agent's account.
struct BalanceInfo {
    std::string id;
    double amount = 0;
    /// ISO 4217 code as the agent reports it.
    std::string currencyCode;
    /// The cap that `amount` counts against, where known.
    std::optional<double> limit;
    bool operator==(const BalanceInfo&) const = default;
};

/// What the agent says about credits: a line in its own words, or that there are some.
struct CreditInfo {
    struct Line {
        std::string text;
        bool operator==(const Line&) const = default;
    };
    struct Available {
        bool operator==(const Available&) const = default;
    };
    std::variant<Line, Available> value;
    bool operator==(const CreditInfo&) const = default;

    static CreditInfo line(std::string text) { return {Line{std::move(text)}}; }
    static CreditInfo available() { return {Available{}}; }
};

/// What an agent says, apart from its windows, about being allowed to work at all. Absent where it
/// says nothing.
struct UsageAllowance {
    /// False: a quota is used up and the agent refuses; true, alone, means that it is back.
    std::optional<bool> ordinaryUsageAllowed;
    /// Which limit has been reached, in the agent's own word.
    std::optional<std::string> reachedType;
    /// Resets that the user has in hand, to be used before they expire.
    std::optional<std::int64_t> bankedResets;
    /// When the next of them expires.
    std::optional<Instant> bankedResetExpiresAt;
    bool operator==(const UsageAllowance&) const = default;
};

/// A remark of a probe about how it came to its reading; it goes to the activity log.
struct SnapshotNote {
    /// The scripted session ended without its end marker; `variant` tells the page's ending.
    struct ClaudeEndMarkerMissing {
        std::string variant;
        bool operator==(const ClaudeEndMarkerMissing&) const = default;
    };
    /// Milliseconds of the phases of the scripted session.
    struct ClaudeTiming {
        std::int64_t waitMs = 0;
        std::int64_t startMs = 0;
        std::int64_t statusMs = 0;
        std::int64_t usageMs = 0;
        std::int64_t quietMs = 0;
        std::int64_t endMs = 0;
        bool operator==(const ClaudeTiming&) const = default;
    };
    /// Which of several ways the reading took ("query", "session"), and how long.
    struct ReadingWay {
        std::string way;
        std::int64_t tookMs = 0;
        bool operator==(const ReadingWay&) const = default;
    };
    /// This version of the agent's CLI does not tell how old its figures are.
    struct AgeNotTold {
        std::string version;
        bool operator==(const AgeNotTold&) const = default;
    };
    /// Each reading of this kind spends some of the quota.
    struct ReadingCosts {
        bool operator==(const ReadingCosts&) const = default;
    };
    /// Something that the agent told beside the figures, in its own words.
    struct AgentSays {
        std::string text;
        bool operator==(const AgentSays&) const = default;
    };
    /// Some windows are as the agent's own session has told them to its status line since.
    struct StatusLine {
        bool operator==(const StatusLine&) const = default;
    };
    std::variant<ClaudeEndMarkerMissing, ClaudeTiming, ReadingWay, AgeNotTold, ReadingCosts,
                 AgentSays, StatusLine>
        value;
    bool operator==(const SnapshotNote&) const = default;
};

/// Where the figures of a snapshot come from.
enum class SnapshotSource {
    loading, ///< no reading yet, a probe is running
    live,    ///< read by the last refresh
    stale,   ///< the last refresh got nothing new; earlier figures are shown
};

/// How an agent or a window is doing.
enum class UsageHealth { healthy, attention, critical, unavailable };

/// One agent's latest reading, or the failed attempt at one.
struct AgentUsageSnapshot {
    AgentProviderID id;
    std::optional<std::string> accountLabel;
    std::optional<std::string> plan;
    /// In the order in which the probe reports them.
    std::vector<UsageWindow> windows;
    std::vector<BalanceInfo> balances;
    std::optional<CreditInfo> credit;
    std::optional<UsageAllowance> allowance;
    std::vector<SnapshotNote> notes;
    SnapshotSource source = SnapshotSource::loading;
    /// The time of the reading, or of the attempt where it failed.
    Instant updatedAt{};
    /// The agent may have more windows than this reading saw.
    bool isIncomplete = false;
    /// The figures are from some time after `updatedAt`: the agent's CLI had kept them and did not
    /// say since when.
    bool mayBeNewer = false;
    /// Set when the last attempt failed.
    std::optional<UsageProviderError> error;

    bool operator==(const AgentUsageSnapshot&) const = default;
};

} // namespace vellmark

template<>
struct std::hash<vellmark::BalanceInfo> {
    std::size_t operator()(const vellmark::BalanceInfo& balance) const noexcept;
};
template<>
struct std::hash<vellmark::CreditInfo> {
    std::size_t operator()(const vellmark::CreditInfo& credit) const noexcept;
};
template<>
struct std::hash<vellmark::UsageAllowance> {
    std::size_t operator()(const vellmark::UsageAllowance& allowance) const noexcept;
};
template<>
struct std::hash<vellmark::SnapshotNote> {
    std::size_t operator()(const vellmark::SnapshotNote& note) const noexcept;
};
template<>
struct std::hash<vellmark::AgentUsageSnapshot> {
    std::size_t operator()(const vellmark::AgentUsageSnapshot& snapshot) const noexcept;
};
