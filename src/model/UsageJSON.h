#pragma once

#include "model/AgentUsageSnapshot.h"
#include "model/UsageHistorySample.h"
#include "text/BoundedJSON.h"

#include <string>
#include <string_view>
#include <vector>

namespace vellmark {

/// The persisted forms of the usage values.
///
/// Dates are numbers: seconds since 2001-01-01 00:00:00 UTC. Absent optional fields and a Boolean
/// field that is false are left out.
/// An enumeration with payloads is an object with one key, the case's name, whose value holds the
/// payload ("_0", "_1" … or labels). Doubles survive a round trip exactly; a number that JSON
/// cannot write becomes the nearest that it can, or 0.
JSON toJSON(const UsageWindow& value);
JSON toJSON(const BalanceInfo& value);
JSON toJSON(const CreditInfo& value);
JSON toJSON(const UsageAllowance& value);
JSON toJSON(const SnapshotNote& value);
JSON toJSON(const UsageProviderError& value);
JSON toJSON(const AgentUsageSnapshot& value);
JSON toJSON(const UsageHistorySample& value);

/// Decoders throw JSONDecodingError and nothing else.
void fromJSON(const JSON& json, UsageWindow& value);
void fromJSON(const JSON& json, BalanceInfo& value);
void fromJSON(const JSON& json, CreditInfo& value);
void fromJSON(const JSON& json, UsageAllowance& value);
void fromJSON(const JSON& json, SnapshotNote& value);
void fromJSON(const JSON& json, UsageProviderError& value);
void fromJSON(const JSON& json, AgentUsageSnapshot& value);
void fromJSON(const JSON& json, UsageHistorySample& value);

/// Several snapshots as one document, which is exchanged whole; a history is not, see
/// UsageHistoryReader. Reading throws JSONDecodingError.
std::string snapshotsDocument(const std::vector<AgentUsageSnapshot>& snapshots);
std::vector<AgentUsageSnapshot> snapshotsFromDocument(std::string_view text);

} // namespace vellmark
