#include "probes/antigravity/AntigravityOutput.h"

#include "probes/antigravity/AntigravityResetTime.h"
#include "probes/antigravity/AntigravityWindowName.h"
#include "text/DecimalNumber.h"
#include "text/Pattern.h"
#include "text/TerminalText.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>

namespace vellmark {

namespace {

using JSONValue = nlohmann::json;

constexpr std::size_t maximumDepth = 512;

/// Whether brackets nest deeper than `maximumDepth`, so that a hostile text is not built up.
bool nestsTooDeep(std::string_view text) {
    std::size_t depth = 0;
    bool insideString = false;
    for (std::size_t index = 0; index < text.size(); ++index) {
        const char character = text[index];
        if (insideString) {
            index += character == '\\' ? 1 : 0;
            insideString = character != '"';
        } else if (character == '"') {
            insideString = true;
        } else if (character == '[' || character == '{') {
            if (++depth > maximumDepth) {
                return true;
            }
        } else if ((character == ']' || character == '}') && depth > 0) {
            --depth;
        }
    }
    return false;
}

constexpr std::array<std::string_view, 9> readMembers = {
    "command",    "data",     "groups", "name", "buckets", "window", "remaining_fraction",
    "reset_time", "response",
};

/// The document with no more than the members that are read; no object when the output is none.
JSONValue parseDocument(std::string_view output) {
    if (nestsTooDeep(output)) {
        return {};
    }
    const auto isRead = [](int depth, JSONValue::parse_event_t event, const JSONValue& parsed) {
        if (event == JSONValue::parse_event_t::key) {
            const auto& name = parsed.get_ref<const std::string&>();
            return std::find(readMembers.begin(), readMembers.end(), name) != readMembers.end();
        }
        return depth > 0 || event != JSONValue::parse_event_t::array_start;
    };
    return JSONValue::parse(output.begin(), output.end(), isRead, false);
}

/// The member of `object` by that name if it is of that type, else null.
const JSONValue* member(const JSONValue* object, const char* name, JSONValue::value_t type) {
    if (object == nullptr || !object->is_object()) {
        return nullptr;
    }
    const auto found = object->find(name);
    return found != object->end() && found->type() == type ? &*found : nullptr;
}

const std::string* text(const JSONValue& object, const char* name) {
    const JSONValue* value = member(&object, name, JSONValue::value_t::string);
    return value != nullptr ? value->get_ptr<const std::string*>() : nullptr;
}

std::optional<AntigravityQuotaRow> readBucket(const std::string& pool, const JSONValue& bucket,
                                              const TimeZone& localZone) {
    const auto fraction = bucket.is_object() ? bucket.find("remaining_fraction") : bucket.end();
    if (fraction == bucket.end() || !fraction->is_number()) {
        return std::nullopt;
    }
    const std::string* window = text(bucket, "window");
    window = window != nullptr ? window : text(bucket, "name");
    auto name = AntigravityWindowName::of(window != nullptr ? *window : std::string());
    const std::string* reset = text(bucket, "reset_time");
    return AntigravityQuotaRow{
        .pool = std::string(trimmed(pool)),
        .windowSlug = std::move(name.slug),
        .windowMinutes = name.minutes,
        .remainingPercent = std::clamp(fraction->get<double>() * 100, 0.0, 100.0),
        .resetsAt = reset != nullptr ? antigravityResetTime(*reset, localZone) : std::nullopt,
    };
}

/// Absent (not empty) when the document does not have the groups.
std::optional<std::vector<AntigravityQuotaRow>> readGroups(const JSONValue& document,
                                                           const TimeZone& localZone) {
    const JSONValue* command = member(&document, "command", JSONValue::value_t::object);
    const JSONValue* data = member(command, "data", JSONValue::value_t::object);
    const JSONValue* groups = member(data, "groups", JSONValue::value_t::array);
    if (groups == nullptr) {
        return std::nullopt;
    }
    std::vector<AntigravityQuotaRow> rows;
    for (const JSONValue& group : *groups) {
        const std::string* pool = text(group, "name");
        const JSONValue* buckets = member(&group, "buckets", JSONValue::value_t::array);
        if (pool == nullptr || buckets == nullptr) {
            continue;
        }
        for (const JSONValue& bucket : *buckets) {
            if (rows.size() == AntigravityOutput::maximumRows) {
                return rows;
            }
            if (auto row = readBucket(*pool, bucket, localZone)) {
                rows.push_back(std::move(*row));
            }
        }
    }
    return rows;
}

std::vector<AntigravityQuotaRow> readLines(std::string_view text, const TimeZone& localZone) {
    std::vector<AntigravityQuotaRow> rows;
    for (const std::string_view line : nonEmptyLines(text)) {
        if (rows.size() == AntigravityOutput::maximumRows) {
            break;
        }
        if (auto row = readAntigravityLine(line, localZone)) {
            rows.push_back(std::move(*row));
        }
    }
    return rows;
}

} // namespace

std::optional<AntigravityQuotaRow> readAntigravityLine(std::string_view line,
                                                       const TimeZone& localZone) {
    static const Pattern byWords(
        R"((?i)^\s*(.+?)\s+((?:weekly|daily|monthly|\d+[\s-]*hours?|\d+\s*h)\b)"
        R"([^%\t]*?remaining)\s+(\d+(?:[.,]\d+)?)\s*%\s*(.*)$)");
    static const Pattern byColumns(R"((?i)^\s*(.+?)(?:\t+|\s{2,})([^%\t]*?remaining)(?:\t+|\s+))"
                                   R"((\d+(?:[.,]\d+)?)\s*%\s*(.*)$)");
    auto match = byWords.search(line);
    if (!match) {
        match = byColumns.search(line);
    }
    if (!match) {
        return std::nullopt;
    }
    std::string number(match->group(3));
    std::replace(number.begin(), number.end(), ',', '.');
    const auto remaining = parseDecimal(number);
    if (!remaining) {
        return std::nullopt;
    }
    auto name = AntigravityWindowName::of(match->group(2));
    return AntigravityQuotaRow{
        .pool = std::string(trimmed(match->group(1))),
        .windowSlug = std::move(name.slug),
        .windowMinutes = name.minutes,
        .remainingPercent = std::clamp(*remaining, 0.0, 100.0),
        .resetsAt = antigravityResetTime(match->group(4), localZone),
    };
}

AntigravityOutput AntigravityOutput::read(std::string_view output, const TimeZone& localZone) {
    const JSONValue document = parseDocument(output);
    AntigravityOutput result;
    const JSONValue* response = member(&document, "response", JSONValue::value_t::string);
    result.text = response != nullptr ? response->get<std::string>() : repairedUTF8(output);
    if (auto rows = readGroups(document, localZone)) {
        result.rows = std::move(*rows);
    } else {
        result.rows = readLines(result.text, localZone);
    }
    return result;
}

} // namespace vellmark
