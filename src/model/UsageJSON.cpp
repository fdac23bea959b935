#include "model/UsageJSON.h"

#include "model/UsageFields.h"
#include "model/UsageProviderErrorCases.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <tuple>
#include <utility>
#include <variant>

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

void decode(const JSON& json, bool& value) {
    if (!json.is_boolean()) {
        fail("expected true or false");
    }
    value = json.get<bool>();
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

const JSON* findMember(const JSON& json, const char* name) {
    const auto found = object(json).find(name);
    return found == json.end() ? nullptr : &*found;
}

template<typename Value>
void decodeMember(const JSON& json, const char* name, Value& value) {
    const JSON* const member = findMember(json, name);
    if (member == nullptr) {
        fail(memberPlace(name) + ": missing");
    }
    at(memberPlace(name), [&] { decode(*member, value); });
}

/// A missing yes means no.
void decodeMember(const JSON& json, const char* name, bool& value) {
    const JSON* const member = findMember(json, name);
    value = false;
    if (member != nullptr) {
        at(memberPlace(name), [&] { decode(*member, value); });
    }
}

template<typename Value>
Value undecoded() {
    return Value{};
}
template<>
UsageProviderError undecoded() {
    return UsageProviderError::other({});
}

template<typename Value>
void decodeMember(const JSON& json, const char* name, std::optional<Value>& value) {
    value.reset();
    const JSON* const member = findMember(json, name);
    if (member == nullptr || member->is_null()) {
        return;
    }
    Value made = undecoded<Value>();
    at(memberPlace(name), [&] { decode(*member, made); });
    value = std::move(made);
}

template<PersistedRecord Record>
void decodeFields(const JSON& json, Record& record) {
    object(json);
    std::apply(
        [&](const auto&... fields) {
            (decodeMember(json, fields.name, record.*fields.member), ...);
        },
        RecordFields<Record>::all);
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

// Encoding. JSON has no infinities and no NaN: the largest number stands for the former, zero for
// the latter.

double encoded(double number) {
    if (std::isfinite(number)) {
        return number;
    }
    return std::isnan(number) ? 0 : std::copysign(std::numeric_limits<double>::max(), number);
}
double encoded(Instant instant) {
    return encoded(instant.time_since_epoch().count());
}
std::int64_t encoded(std::int64_t number) {
    return number;
}
bool encoded(bool value) {
    return value;
}
const std::string& encoded(const std::string& text) {
    return text;
}
const std::string& encoded(const AgentProviderID& id) {
    return id.rawValue;
}
std::string encoded(const UUID& id) {
    return id.text();
}
const char* encoded(SnapshotSource source) {
    return sourceNames[static_cast<std::size_t>(source)].second;
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
void encodeMember(JSON& json, const char* name, const Value& value) {
    json[name] = encoded(value);
}

void encodeMember(JSON& json, const char* name, bool value) {
    if (value) {
        json[name] = true;
    }
}

template<typename Value>
void encodeMember(JSON& json, const char* name, const std::optional<Value>& value) {
    if (value) {
        json[name] = encoded(*value);
    }
}

template<PersistedRecord Record>
JSON encodedFields(const Record& record) {
    JSON json = JSON::object();
    std::apply(
        [&](const auto&... fields) {
            (encodeMember(json, fields.name, record.*fields.member), ...);
        },
        RecordFields<Record>::all);
    return json;
}

// An enumeration with payloads: an object of one member, the case's name with its fields.

template<typename... Cases>
JSON encodedCase(const std::variant<Cases...>& value) {
    return std::visit(
        []<typename Case>(const Case& chosen) {
            JSON json = JSON::object();
            json[RecordFields<Case>::caseName] = encodedFields(chosen);
            return json;
        },
        value);
}

template<typename... Cases>
void decodeCase(const JSON& json, std::variant<Cases...>& value) {
    const auto& [name, payload] = enumerationCase(json);
    at(memberPlace(name.c_str()), [&, &name = name, &payload = payload] {
        const auto decodeIfNamed = [&]<typename Case>(Case made) {
            if (name != RecordFields<Case>::caseName) {
                return false;
            }
            decodeFields(payload, made);
            value = std::move(made);
            return true;
        };
        if (!(decodeIfNamed(Cases{}) || ...)) {
            failUnknownCase(name);
        }
    });
}

} // namespace

JSON toJSON(const UsageWindow& value) {
    return encodedFields(value);
}
JSON toJSON(const BalanceInfo& value) {
    return encodedFields(value);
}
JSON toJSON(const UsageAllowance& value) {
    return encodedFields(value);
}
JSON toJSON(const AgentUsageSnapshot& value) {
    return encodedFields(value);
}
JSON toJSON(const UsageHistorySample& value) {
    return encodedFields(value);
}
JSON toJSON(const CreditInfo& value) {
    return encodedCase(value.value);
}
JSON toJSON(const SnapshotNote& value) {
    return encodedCase(value.value);
}

void fromJSON(const JSON& json, UsageWindow& value) {
    decodeFields(json, value);
}
void fromJSON(const JSON& json, BalanceInfo& value) {
    decodeFields(json, value);
}
void fromJSON(const JSON& json, UsageAllowance& value) {
    decodeFields(json, value);
}
void fromJSON(const JSON& json, AgentUsageSnapshot& value) {
    decodeFields(json, value);
}
void fromJSON(const JSON& json, UsageHistorySample& value) {
    decodeFields(json, value);
}
void fromJSON(const JSON& json, CreditInfo& value) {
    decodeCase(json, value.value);
}
void fromJSON(const JSON& json, SnapshotNote& value) {
    decodeCase(json, value.value);
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

std::string snapshotsDocument(const std::vector<AgentUsageSnapshot>& snapshots) {
    return serialized(encoded(snapshots));
}

std::vector<AgentUsageSnapshot> snapshotsFromDocument(std::string_view text) {
    std::vector<AgentUsageSnapshot> snapshots;
    decode(parsedJSON(text), snapshots);
    return snapshots;
}

} // namespace vellmark
