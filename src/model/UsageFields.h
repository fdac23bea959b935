#pragma once

#include "model/AgentUsageSnapshot.h"
#include "model/UsageHistorySample.h"

#include <tuple>

namespace vellmark {

/// The fields of the persisted records, each told once: by its name in JSON and its place in the
/// record, in the order in which it is written. Reading, writing and hashing follow from this.
///
/// `RecordFields<Record>::all` is a tuple of fields. An alternative of an enumeration with payloads
/// also has `caseName`, the key under which its payload stands.
template<typename Record>
struct RecordFields;

template<typename Record, typename Value>
struct RecordField {
    const char* name;
    Value Record::*member;
};

template<typename Record, typename Value>
constexpr RecordField<Record, Value> field(const char* name, Value Record::*member) {
    return {name, member};
}

template<typename Record>
concept PersistedRecord = requires { RecordFields<Record>::all; };

template<>
struct RecordFields<UsageWindow> {
    static constexpr std::tuple all{
        field("id", &UsageWindow::id),
        field("usedPercent", &UsageWindow::usedPercent),
        field("windowDurationMinutes", &UsageWindow::windowDurationMinutes),
        field("resetsAt", &UsageWindow::resetsAt),
        field("label", &UsageWindow::label),
        field("readAt", &UsageWindow::readAt),
    };
};

template<>
struct RecordFields<BalanceInfo> {
    static constexpr std::tuple all{
        field("id", &BalanceInfo::id),
        field("amount", &BalanceInfo::amount),
        field("currencyCode", &BalanceInfo::currencyCode),
        field("limit", &BalanceInfo::limit),
    };
};

template<>
struct RecordFields<UsageAllowance> {
    static constexpr std::tuple all{
        field("ordinaryUsageAllowed", &UsageAllowance::ordinaryUsageAllowed),
        field("reachedType", &UsageAllowance::reachedType),
        field("bankedResets", &UsageAllowance::bankedResets),
        field("bankedResetExpiresAt", &UsageAllowance::bankedResetExpiresAt),
    };
};

template<>
struct RecordFields<UsageHistorySample> {
    static constexpr std::tuple all{
        field("id", &UsageHistorySample::id),
        field("provider", &UsageHistorySample::provider),
        field("windowID", &UsageHistorySample::windowID),
        field("capturedAt", &UsageHistorySample::capturedAt),
        field("usedPercent", &UsageHistorySample::usedPercent),
        field("resetsAt", &UsageHistorySample::resetsAt),
    };
};

template<>
struct RecordFields<AgentUsageSnapshot> {
    static constexpr std::tuple all{
        field("id", &AgentUsageSnapshot::id),
        field("accountLabel", &AgentUsageSnapshot::accountLabel),
        field("plan", &AgentUsageSnapshot::plan),
        field("windows", &AgentUsageSnapshot::windows),
        field("balances", &AgentUsageSnapshot::balances),
        field("credit", &AgentUsageSnapshot::credit),
        field("allowance", &AgentUsageSnapshot::allowance),
        field("notes", &AgentUsageSnapshot::notes),
        field("source", &AgentUsageSnapshot::source),
        field("updatedAt", &AgentUsageSnapshot::updatedAt),
        field("isIncomplete", &AgentUsageSnapshot::isIncomplete),
        field("mayBeNewer", &AgentUsageSnapshot::mayBeNewer),
        field("error", &AgentUsageSnapshot::error),
    };
};

// The cases of CreditInfo and SnapshotNote.

template<>
struct RecordFields<CreditInfo::Line> {
    static constexpr const char* caseName = "line";
    static constexpr std::tuple all{field("_0", &CreditInfo::Line::text)};
};

template<>
struct RecordFields<CreditInfo::Available> {
    static constexpr const char* caseName = "available";
    static constexpr std::tuple<> all{};
};

template<>
struct RecordFields<SnapshotNote::ClaudeEndMarkerMissing> {
    static constexpr const char* caseName = "claudeEndMarkerMissing";
    static constexpr std::tuple all{
        field("variant", &SnapshotNote::ClaudeEndMarkerMissing::variant),
    };
};

template<>
struct RecordFields<SnapshotNote::ClaudeTiming> {
    using Timing = SnapshotNote::ClaudeTiming;
    static constexpr const char* caseName = "claudeTiming";
    static constexpr std::tuple all{
        field("waitMs", &Timing::waitMs),     field("startMs", &Timing::startMs),
        field("statusMs", &Timing::statusMs), field("usageMs", &Timing::usageMs),
        field("quietMs", &Timing::quietMs),   field("endMs", &Timing::endMs),
    };
};

template<>
struct RecordFields<SnapshotNote::ReadingWay> {
    static constexpr const char* caseName = "readingWay";
    static constexpr std::tuple all{
        field("way", &SnapshotNote::ReadingWay::way),
        field("tookMs", &SnapshotNote::ReadingWay::tookMs),
    };
};

template<>
struct RecordFields<SnapshotNote::AgeNotTold> {
    static constexpr const char* caseName = "ageNotTold";
    static constexpr std::tuple all{field("version", &SnapshotNote::AgeNotTold::version)};
};

template<>
struct RecordFields<SnapshotNote::ReadingCosts> {
    static constexpr const char* caseName = "readingCosts";
    static constexpr std::tuple<> all{};
};

template<>
struct RecordFields<SnapshotNote::StatusLine> {
    static constexpr const char* caseName = "statusLine";
    static constexpr std::tuple<> all{};
};

template<>
struct RecordFields<SnapshotNote::AgentSays> {
    static constexpr const char* caseName = "agentSays";
    static constexpr std::tuple all{field("text", &SnapshotNote::AgentSays::text)};
};

} // namespace vellmark
