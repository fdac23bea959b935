#include "model/UsageJSON.h"

#include "model/UsageProviderErrorCases.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

namespace vellmark {

/// Makes errors of any payload; the public makers name one case each.
struct UsageProviderErrorCoding {
    static UsageProviderError make(UsageProviderError::Kind kind, std::vector<std::string> texts,
                                   std::int64_t code) {
        return {kind, std::move(texts), code};
    }
};

namespace {

constexpr std::array sourceNames{
    std::pair{SnapshotSource::loading, "loading"},
    std::pair{SnapshotSource::live, "live"},
    std::pair{SnapshotSource::stale, "stale"},
};

// What a document may hold, far beyond what any of ours has: a hostile one must not cost more than
// its length.
constexpr int deepestNesting = 512;
constexpr std::size_t mostMembers = 1000;

[[noreturn]] void fail(const std::string& reason) {
    throw JSONDecodingError(reason);
}

[[noreturn]] void failUnknownCase(const std::string& name) {
    fail("data corrupted: unknown case \"" + name + "\"");
}

/// Runs `decode`; what it throws gets `place` put in front of its path.
template<typename Decode>
auto at(const std::string& place, Decode decode) {
    try {
        return decode();
    } catch (const JSONDecodingError& error) {
        const std::string reason = error.what();
        const bool isPath = reason.starts_with('.') || reason.starts_with('[');
        fail(place + (isPath ? "" : ": ") + reason);
    }
}

std::string memberPlace(const char* name) {
    return std::string(".") + name;
}

std::string elementPlace(std::size_t index) {
    return std::string("[").append(std::to_string(index)).append("]");
}

// One decoder for each kind of value.

void decode(const JSON& json, std::string& value) {
    if (!json.is_string()) {
        fail("expected a string");
    }
    value = json.get<std::string>();
}

void decode(const JSON& json, double& value) {
    if (!json.is_number()) {
        fail("expected a number");
    }
    value = json.get<double>();
}

void decode(const JSON& json, std::int64_t& value) {
    constexpr double bound = 9223372036854775808.0; // 2^63
    if (json.is_number_float()) {
        const double number = json.get<double>();
        if (number != std::trunc(number) || number < -bound || number >= bound) {
            fail("expected an integer");
        }
        value = static_cast<std::int64_t>(number);
        return;
    }
    if (!json.is_number_integer() ||
        (json.is_number_unsigned() && json.get<std::uint64_t>() > INT64_MAX)) {
        fail("expected an integer");
    }
    value = json.get<std::int64_t>();
}

void decode(const JSON& json, Instant& value) {
    double seconds = 0;
    decode(json, seconds);
    value = Instant(Seconds(seconds));
}

void decode(const JSON& json, AgentProviderID& value) {
    decode(json, value.rawValue);
}

void decode(const JSON& json, UUID& value) {
    std::string text;
    decode(json, text);
    const auto parsed = UUID::parse(text);
    if (!parsed) {
        fail("expected a UUID");
    }
    value = *parsed;
}

void decode(const JSON& json, SnapshotSource& value) {
    std::string text;
    decode(json, text);
    for (const auto& [source, name] : sourceNames) {
        if (text == name) {
            value = source;
            return;
        }
    }
    failUnknownCase(text);
}

template<typename Value>
    requires requires(const JSON& json, Value& value) { fromJSON(json, value); }
void decode(const JSON& json, Value& value) {
    fromJSON(json, value);
}

template<typename Value>
void decode(const JSON& json, std::vector<Value>& values) {
    if (!json.is_array()) {
        fail("expected an array");
    }
    values.clear();
    values.reserve(json.size());
    for (std::size_t index = 0; index < json.size(); ++index) {
        at(elementPlace(index), [&] {
            Value value{};
            decode(json[index], value);
            values.push_back(std::move(value));
        });
    }
}

// Members of an object.

const JSON& object(const JSON& json) {
    if (!json.is_object()) {
        fail("expected an object");
    }
    return json;
}

template<typename Value>
void decodeMember(const JSON& json, const char* name, Value& value) {
    const auto found = object(json).find(name);
    if (found == json.end()) {
        fail(memberPlace(name) + ": missing");
    }
    at(memberPlace(name), [&] { decode(*found, value); });
}

template<typename Value>
void decodeMember(const JSON& json, const char* name, std::optional<Value>& value, Value made) {
    const auto found = object(json).find(name);
    if (found == json.end() || found->is_null()) {
        value.reset();
        return;
    }
    at(memberPlace(name), [&] { decode(*found, made); });
    value = std::move(made);
}

template<typename Value>
void decodeMember(const JSON& json, const char* name, std::optional<Value>& value) {
    decodeMember(json, name, value, Value{});
}

/// The one member of an object that stands for an enumeration's case, and its payload.
std::pair<const std::string&, const JSON&> enumerationCase(const JSON& json) {
    if (object(json).size() != 1) {
        fail("Invalid number of keys found, expected one.");
    }
    const auto member = json.begin();
    return {member.key(), member.value()};
}

std::string payloadName(std::size_t index) {
    return std::string("_").append(std::to_string(index));
}

// Encoding. JSON has no infinities: the largest number stands for them, zero for what is none.

double encoded(double number) {
    if (std::isfinite(number)) {
        return number;
    }
    return std::isnan(number) ? 0 : std::copysign(std::numeric_limits<double>::max(), number);
}
double encoded(Instant instant) {
    return encoded(instant.time_since_epoch().count());
}
const std::string& encoded(const std::string& text) {
    return text;
}
template<typename Value>
    requires requires(const Value& value) { toJSON(value); }
JSON encoded(const Value& value) {
    return toJSON(value);
}

template<typename Value>
JSON encoded(const std::vector<Value>& values) {
    JSON result = JSON::array();
    for (const Value& value : values) {
        result.push_back(toJSON(value));
    }
    return result;
}

template<typename Value>
void encodeMember(JSON& json, const char* name, const std::optional<Value>& value) {
    if (value) {
        json[name] = encoded(*value);
    }
}

} // namespace

JSON toJSON(const UsageWindow& value) {
    JSON json = {{"id", value.id}, {"usedPercent", encoded(value.usedPercent)}};
    encodeMember(json, "windowDurationMinutes", value.windowDurationMinutes);
    encodeMember(json, "resetsAt", value.resetsAt);
    return json;
}

void fromJSON(const JSON& json, UsageWindow& value) {
    decodeMember(json, "id", value.id);
    decodeMember(json, "usedPercent", value.usedPercent);
    decodeMember(json, "windowDurationMinutes", value.windowDurationMinutes);
    decodeMember(json, "resetsAt", value.resetsAt);
}

JSON toJSON(const BalanceInfo& value) {
    JSON json = {
        {"id", value.id}, {"amount", encoded(value.amount)}, {"currencyCode", value.currencyCode}};
    encodeMember(json, "limit", value.limit);
    return json;
}

void fromJSON(const JSON& json, BalanceInfo& value) {
    decodeMember(json, "id", value.id);
    decodeMember(json, "amount", value.amount);
    decodeMember(json, "currencyCode", value.currencyCode);
    decodeMember(json, "limit", value.limit);
}

JSON toJSON(const CreditInfo& value) {
    if (const auto* line = std::get_if<CreditInfo::Line>(&value.value)) {
        return {{"line", {{"_0", line->text}}}};
    }
    return {{"available", JSON::object()}};
}

void fromJSON(const JSON& json, CreditInfo& value) {
    const auto& [name, payload] = enumerationCase(json);
    at(memberPlace(name.c_str()), [&, &name = name, &payload = payload] {
        if (name == "line") {
            CreditInfo::Line line;
            decodeMember(payload, "_0", line.text);
            value.value = std::move(line);
        } else if (name == "available") {
            object(payload);
            value.value = CreditInfo::Available{};
        } else {
            failUnknownCase(name);
        }
    });
}

JSON toJSON(const SnapshotNote& value) {
    if (const auto* marker = std::get_if<SnapshotNote::ClaudeEndMarkerMissing>(&value.value)) {
        return {{"claudeEndMarkerMissing", {{"variant", marker->variant}}}};
    }
    const auto& timing = std::get<SnapshotNote::ClaudeTiming>(value.value);
    return {{"claudeTiming",
             {{"waitMs", timing.waitMs},
              {"startMs", timing.startMs},
              {"statusMs", timing.statusMs},
              {"usageMs", timing.usageMs},
              {"quietMs", timing.quietMs},
              {"endMs", timing.endMs}}}};
}

void fromJSON(const JSON& json, SnapshotNote& value) {
    const auto& [name, payload] = enumerationCase(json);
    at(memberPlace(name.c_str()), [&, &name = name, &payload = payload] {
        if (name == "claudeEndMarkerMissing") {
            SnapshotNote::ClaudeEndMarkerMissing marker;
            decodeMember(payload, "variant", marker.variant);
            value.value = std::move(marker);
        } else if (name == "claudeTiming") {
            SnapshotNote::ClaudeTiming timing;
            decodeMember(payload, "waitMs", timing.waitMs);
            decodeMember(payload, "startMs", timing.startMs);
            decodeMember(payload, "statusMs", timing.statusMs);
            decodeMember(payload, "usageMs", timing.usageMs);
            decodeMember(payload, "quietMs", timing.quietMs);
            decodeMember(payload, "endMs", timing.endMs);
            value.value = timing;
        } else {
            failUnknownCase(name);
        }
    });
}

JSON toJSON(const UsageProviderError& value) {
    const ErrorCase& errorCase = vellmark::errorCase(value.kind());
    JSON payload = JSON::object();
    if (errorCase.hasCode) {
        payload[payloadName(0)] = value.code();
    }
    for (const std::string& text : value.texts()) {
        payload[payloadName(payload.size())] = text;
    }
    return {{errorCase.name, std::move(payload)}};
}

void fromJSON(const JSON& json, UsageProviderError& value) {
    const auto& [name, payload] = enumerationCase(json);
    at(memberPlace(name.c_str()), [&, &name = name, &payload = payload] {
        for (const ErrorCase& candidate : errorCases) {
            if (name != candidate.name) {
                continue;
            }
            object(payload);
            std::int64_t code = 0;
            std::vector<std::string> texts(candidate.textCount);
            std::size_t index = 0;
            if (candidate.hasCode) {
                decodeMember(payload, payloadName(index++).c_str(), code);
            }
            for (std::string& text : texts) {
                decodeMember(payload, payloadName(index++).c_str(), text);
            }
            value = UsageProviderErrorCoding::make(candidate.kind, std::move(texts), code);
            return;
        }
        failUnknownCase(name);
    });
}

JSON toJSON(const AgentUsageSnapshot& value) {
    JSON json = {{"id", value.id.rawValue}};
    encodeMember(json, "accountLabel", value.accountLabel);
    encodeMember(json, "plan", value.plan);
    json["windows"] = encoded(value.windows);
    json["balances"] = encoded(value.balances);
    encodeMember(json, "credit", value.credit);
    json["notes"] = encoded(value.notes);
    json["source"] = sourceNames[static_cast<std::size_t>(value.source)].second;
    json["updatedAt"] = encoded(value.updatedAt);
    encodeMember(json, "error", value.error);
    return json;
}

void fromJSON(const JSON& json, AgentUsageSnapshot& value) {
    decodeMember(json, "id", value.id);
    decodeMember(json, "accountLabel", value.accountLabel);
    decodeMember(json, "plan", value.plan);
    decodeMember(json, "windows", value.windows);
    decodeMember(json, "balances", value.balances);
    decodeMember(json, "credit", value.credit);
    decodeMember(json, "notes", value.notes);
    decodeMember(json, "source", value.source);
    decodeMember(json, "updatedAt", value.updatedAt);
    decodeMember(json, "error", value.error, UsageProviderError::other({}));
}

JSON toJSON(const UsageHistorySample& value) {
    JSON json = {{"id", value.id.text()},
                 {"provider", value.provider.rawValue},
                 {"windowID", value.windowID},
                 {"capturedAt", encoded(value.capturedAt)},
                 {"usedPercent", encoded(value.usedPercent)}};
    encodeMember(json, "resetsAt", value.resetsAt);
    return json;
}

void fromJSON(const JSON& json, UsageHistorySample& value) {
    decodeMember(json, "id", value.id);
    decodeMember(json, "provider", value.provider);
    decodeMember(json, "windowID", value.windowID);
    decodeMember(json, "capturedAt", value.capturedAt);
    decodeMember(json, "usedPercent", value.usedPercent);
    decodeMember(json, "resetsAt", value.resetsAt);
}

JSON parsedJSON(std::string_view text) {
    std::vector<std::size_t> memberCounts;
    const auto guard = [&](int depth, JSON::parse_event_t event, JSON&) {
        if (depth > deepestNesting) {
            fail("nested too deeply");
        }
        memberCounts.resize(std::max(memberCounts.size(), static_cast<std::size_t>(depth) + 1));
        std::size_t& count = memberCounts[static_cast<std::size_t>(depth)];
        if (event == JSON::parse_event_t::object_start) {
            memberCounts.resize(static_cast<std::size_t>(depth) + 2);
            memberCounts.back() = 0;
        } else if (event == JSON::parse_event_t::key && ++count > mostMembers) {
            fail("an object has too many members");
        }
        return true;
    };
    try {
        return JSON::parse(text, guard);
    } catch (const JSON::exception& error) {
        fail(error.what());
    }
}

std::string serialized(const JSON& json, int indent) {
    return json.dump(indent, ' ', false, JSON::error_handler_t::replace);
}

std::string snapshotsDocument(const std::vector<AgentUsageSnapshot>& snapshots) {
    return serialized(encoded(snapshots));
}

std::vector<AgentUsageSnapshot> snapshotsFromDocument(std::string_view text) {
    std::vector<AgentUsageSnapshot> snapshots;
    decode(parsedJSON(text), snapshots);
    return snapshots;
}

} // namespace vellmark
