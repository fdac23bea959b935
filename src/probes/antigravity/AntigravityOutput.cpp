#include "probes/antigravity/AntigravityOutput.h"

#include "probes/antigravity/AntigravityResetTime.h"
#include "probes/antigravity/AntigravityWindowName.h"
#include "text/BoundedJSON.h"
#include "text/DecimalNumber.h"
#include "text/Pattern.h"
#include "text/TerminalText.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <span>

namespace vellmark {

namespace {

/// What the CLI prints in place of figures for a quota of which everything is left.
constexpr std::string_view notUsedYet = "not used yet";

bool saysNotUsedYet(std::string_view text) {
    return lowercased(text).find(notUsedYet) != std::string::npos;
}

/// The object that `text` is; null for anything else.
JSON objectIn(std::string_view text) {
    try {
        JSON value = parsedJSON(text);
        return value.is_object() ? value : JSON();
    } catch (const JSONDecodingError&) {
        return {};
    }
}

/// The document in what was printed. Warnings may stand before and after it, on lines of their own.
JSON documentIn(std::string_view output) {
    if (JSON document = objectIn(output); !document.is_null()) {
        return document;
    }
    const std::size_t begin = output.starts_with('{') ? 0 : output.find("\n{") + 1;
    const std::size_t end = output.rfind('}') + 1;
    return begin < end ? objectIn(output.substr(begin, end - begin)) : JSON();
}

/// The member of `object` by that name if it is of that type, else null.
const JSON* member(const JSON* object, const char* name, JSON::value_t type) {
    if (object == nullptr || !object->is_object()) {
        return nullptr;
    }
    const auto found = object->find(name);
    return found != object->end() && found->type() == type ? &*found : nullptr;
}

const std::string* text(const JSON& object, const char* name) {
    const JSON* value = member(&object, name, JSON::value_t::string);
    return value != nullptr ? value->get_ptr<const std::string*>() : nullptr;
}

// Members that count what a model did, in lower case and without underscores, and those that hold
// such counts, also by model. The CLIs of all agents use names like these.
constexpr std::array<std::string_view, 10> countMembers = {
    "numturns", "totaltokens",     "inputtokens",      "outputtokens",         "prompttokens",
    "tokens",   "totaltokencount", "prompttokencount", "candidatestokencount", "tokencount",
};
constexpr std::array<std::string_view, 3> statisticsMembers = {"usage", "stats", "modelusage"};

std::string plainName(std::string_view name) {
    std::string plain = lowercased(name);
    std::erase(plain, '_');
    return plain;
}

bool isOneOf(std::span<const std::string_view> names, std::string_view name) {
    return std::ranges::find(names, name) != names.end();
}

/// Whether there is a count above 0 in `value`, which is a count itself or holds some.
bool countsAnything(const JSON& value, bool isCount) {
    if (value.is_number()) {
        return isCount && value.get<double>() > 0;
    }
    if (!value.is_structured()) {
        return false;
    }
    return std::ranges::any_of(value.items(), [&](const auto& item) {
        return countsAnything(
            item.value(),
            isCount || (value.is_object() && isOneOf(countMembers, plainName(item.key()))));
    });
}

bool tellsOfATurn(const JSON& document) {
    return document.is_object() && std::ranges::any_of(document.items(), [](const auto& item) {
               const std::string name = plainName(item.key());
               const bool isCount = isOneOf(countMembers, name);
               return (isCount || isOneOf(statisticsMembers, name)) &&
                      countsAnything(item.value(), isCount);
           });
}

/// What stands behind the CLI's mark of an error on one line: its words, or else all of it.
std::optional<std::string> errorReason(std::string_view output) {
    constexpr std::string_view mark = "AGY_ERROR:";
    const std::size_t begin = output.find(mark);
    if (begin == std::string_view::npos) {
        return std::nullopt;
    }
    std::string_view line = output.substr(begin + mark.size());
    line = trimmed(line.substr(0, line.find('\n')));
    const JSON error = objectIn(line);
    const JSON* const inner = member(&error, "error", JSON::value_t::object);
    for (const JSON* const object : {&error, inner}) {
        for (const char* const name : {"message", "reason", "error", "detail"}) {
            if (const JSON* words = member(object, name, JSON::value_t::string)) {
                return words->get<std::string>();
            }
        }
    }
    return repairedUTF8(line);
}

bool isDisabled(const JSON& object) {
    const JSON* const disabled = member(&object, "disabled", JSON::value_t::boolean);
    const JSON* const enabled = member(&object, "enabled", JSON::value_t::boolean);
    return (disabled != nullptr && disabled->get<bool>()) ||
           (enabled != nullptr && !enabled->get<bool>());
}

std::optional<double> remainingPercent(const JSON& bucket) {
    const auto fraction = bucket.find("remaining_fraction");
    if (fraction != bucket.end() && fraction->is_number()) {
        return std::clamp(fraction->get<double>() * 100, 0.0, 100.0);
    }
    const bool isUnused = std::ranges::any_of(bucket, [](const JSON& value) {
        return value.is_string() && saysNotUsedYet(value.get_ref<const std::string&>());
    });
    return isUnused ? std::optional(100.0) : std::nullopt;
}

std::optional<AntigravityQuotaRow> readBucket(const std::string& pool, const JSON& bucket,
                                              const TimeZone& localZone) {
    if (!bucket.is_object() || isDisabled(bucket)) {
        return std::nullopt;
    }
    const auto remaining = remainingPercent(bucket);
    if (!remaining) {
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
        .remainingPercent = *remaining,
        .resetsAt = reset != nullptr ? antigravityResetTime(*reset, localZone) : std::nullopt,
    };
}

/// Absent (not empty) when the document does not have the groups.
std::optional<std::vector<AntigravityQuotaRow>> readGroups(const JSON& document,
                                                           const TimeZone& localZone) {
    const JSON* command = member(&document, "command", JSON::value_t::object);
    const JSON* data = member(command, "data", JSON::value_t::object);
    const JSON* groups = member(data, "groups", JSON::value_t::array);
    if (groups == nullptr) {
        return std::nullopt;
    }
    std::vector<AntigravityQuotaRow> rows;
    for (const JSON& group : *groups) {
        const std::string* pool = text(group, "name");
        const JSON* buckets = member(&group, "buckets", JSON::value_t::array);
        if (pool == nullptr || buckets == nullptr || isDisabled(group)) {
            continue;
        }
        for (const JSON& bucket : *buckets) {
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

/// Removes the first lines of `text`, about 1 MB, and returns them, so that the lines of a flood
/// are never all held at once.
std::string_view takeLines(std::string_view& text) {
    constexpr std::size_t size = 1u << 20;
    const std::size_t end = text.size() > size ? text.find('\n', size) : std::string_view::npos;
    const std::string_view lines = text.substr(0, end);
    text.remove_prefix(lines.size());
    return lines;
}

std::vector<AntigravityQuotaRow> readLines(std::string_view text, const TimeZone& localZone) {
    static const Pattern figure("(?i)%|not used yet"); // quickly passes over all other lines
    std::vector<AntigravityQuotaRow> rows;
    while (!text.empty()) {
        for (const std::string_view line : nonEmptyLines(takeLines(text))) {
            if (rows.size() == AntigravityOutput::maximumRows) {
                return rows;
            }
            if (!figure.matches(line)) {
                continue;
            }
            if (auto row = readAntigravityLine(line, localZone)) {
                rows.push_back(std::move(*row));
            }
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
    static const Pattern unused(
        R"((?i)^\s*(.+?)\s+((?:weekly|daily|monthly|\d+[\s-]*hours?|\d+\s*h)\b)"
        R"([^%\t]*?)[\s:]+(not used yet)\b(.*)$)");
    auto match = byWords.search(line);
    if (!match) {
        match = byColumns.search(line);
    }
    double remaining = 100;
    if (match) {
        std::string number(match->group(3));
        std::replace(number.begin(), number.end(), ',', '.');
        const auto parsed = parseDecimal(number);
        if (!parsed) {
            return std::nullopt;
        }
        remaining = std::clamp(*parsed, 0.0, 100.0);
    } else if (!(match = unused.search(line))) {
        return std::nullopt;
    }
    auto name = AntigravityWindowName::of(match->group(2));
    return AntigravityQuotaRow{
        .pool = std::string(trimmed(match->group(1))),
        .windowSlug = std::move(name.slug),
        .windowMinutes = name.minutes,
        .remainingPercent = remaining,
        .resetsAt = antigravityResetTime(match->group(4), localZone),
    };
}

AntigravityOutput AntigravityOutput::read(std::string_view output, const TimeZone& localZone) {
    const JSON document = documentIn(output);
    AntigravityOutput result;
    const JSON* response = member(&document, "response", JSON::value_t::string);
    result.text = response != nullptr ? response->get<std::string>() : repairedUTF8(output);
    result.reason = errorReason(output);
    result.tookTurn = tellsOfATurn(document);
    if (auto rows = readGroups(document, localZone)) {
        result.rows = std::move(*rows);
    } else if (!result.tookTurn) {
        result.rows = readLines(result.text, localZone);
    }
    return result;
}

} // namespace vellmark
