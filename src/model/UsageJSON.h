#pragma once

#include "model/AgentUsageSnapshot.h"
#include "model/UsageHistorySample.h"

#include <nlohmann/json_fwd.hpp>

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace vellmark {

/// The persisted forms of the usage values.
///
/// Dates are numbers: seconds since 2001-01-01 00:00:00 UTC. Absent optional fields are left out.
/// An enumeration with payloads is an object with one key, the case's name, whose value holds the
/// payload ("_0", "_1" … or labels). Doubles survive a round trip exactly; a number that JSON
/// cannot write becomes the nearest that it can, or 0.
using JSON = nlohmann::ordered_json;

/// Why a text is not the persisted form that it should be, with the path to the place.
class JSONDecodingError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

JSON toJSON(const UsageWindow& value);
JSON toJSON(const BalanceInfo& value);
JSON toJSON(const CreditInfo& value);
JSON toJSON(const SnapshotNote& value);
JSON toJSON(const UsageProviderError& value);
JSON toJSON(const AgentUsageSnapshot& value);
JSON toJSON(const UsageHistorySample& value);

/// Decoders throw JSONDecodingError and nothing else.
void fromJSON(const JSON& json, UsageWindow& value);
void fromJSON(const JSON& json, BalanceInfo& value);
void fromJSON(const JSON& json, CreditInfo& value);
void fromJSON(const JSON& json, SnapshotNote& value);
void fromJSON(const JSON& json, UsageProviderError& value);
void fromJSON(const JSON& json, AgentUsageSnapshot& value);
void fromJSON(const JSON& json, UsageHistorySample& value);

/// Parses a document of another's making, such as a file or an agent's answer. Throws
/// JSONDecodingError, also for one that nests deeper than 512 or has an object with more than 1,000
/// members: neither may cost more than its length.
JSON parsedJSON(std::string_view text);

/// A document in UTF-8; ill-formed text in a value is written with U+FFFD. `indent` below 0 is one
/// line.
std::string serialized(const JSON& json, int indent = 2);

/// Several snapshots as one document, which is exchanged whole; a history is not, see
/// UsageHistoryReader. Reading throws JSONDecodingError.
std::string snapshotsDocument(const std::vector<AgentUsageSnapshot>& snapshots);
std::vector<AgentUsageSnapshot> snapshotsFromDocument(std::string_view text);

} // namespace vellmark
