#include "model/HistorySampleParser.h"

#include "model/UsageJSON.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <numeric>
#include <vector>

namespace vellmark {

namespace {

enum Field : unsigned {
    idField = 1,
    providerField = 2,
    windowField = 4,
    capturedField = 8,
    usedField = 16,
    resetsField = 32,
};
constexpr unsigned requiredFields =
    idField | providerField | windowField | capturedField | usedField;

unsigned fieldNamed(std::string_view name) {
    if (name == "id") {
        return idField;
    }
    if (name == "provider") {
        return providerField;
    }
    if (name == "windowID") {
        return windowField;
    }
    if (name == "capturedAt") {
        return capturedField;
    }
    if (name == "usedPercent") {
        return usedField;
    }
    return name == "resetsAt" ? resetsField : 0u;
}

bool isSpace(char character) {
    return character == ' ' || character == '\n' || character == '\r' || character == '\t';
}

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

void skipSpace(const char*& position, const char* end) {
    while (position != end && isSpace(*position)) {
        ++position;
    }
}

bool take(const char*& position, const char* end, char expected) {
    skipSpace(position, end);
    if (position == end || *position != expected) {
        return false;
    }
    ++position;
    return true;
}

/// A text in quotes of plain ASCII without escapes. Whether other bytes are UTF-8 is left to the
/// library.
bool plainText(const char*& position, const char* end, std::string_view& text) {
    if (!take(position, end, '"')) {
        return false;
    }
    const char* begin = position;
    while (position != end && *position != '"') {
        const auto byte = static_cast<unsigned char>(*position);
        if (byte < 0x20 || byte >= 0x80 || byte == '\\') {
            return false;
        }
        ++position;
    }
    text = {begin, static_cast<std::size_t>(position - begin)};
    return take(position, end, '"');
}

bool take(std::string_view text, UUID& id) {
    const auto parsed = UUID::parse(text);
    id = parsed.value_or(UUID());
    return parsed.has_value();
}

/// The length of the object at the beginning of `text`; 0 when it does not end there.
std::size_t objectLength(std::string_view text) {
    int depth = 0;
    bool quoted = false;
    for (std::size_t index = 0; index < text.size(); ++index) {
        const char character = text[index];
        if (quoted) {
            index += character == '\\';
            quoted = character != '"';
        } else if (character == '"') {
            quoted = true;
        } else if (character == '{' || character == '[') {
            ++depth;
        } else if (character == '}' || character == ']') {
            if (--depth == 0) {
                return index + 1;
            }
        }
    }
    return 0;
}

bool isOfType(const JSON& value, unsigned field) {
    const bool isText = (field & (idField | providerField | windowField)) != 0;
    return isText ? value.is_string()
                  : value.is_number() || (field == resetsField && value.is_null());
}

/// Whether `name` could be the name of a required field with one bit flipped or one character
/// changed.
bool isNearlyName(std::string_view name, unsigned field) {
    for (const std::string_view own : {"id", "provider", "windowID", "capturedAt", "usedPercent"}) {
        if (fieldNamed(own) != field || own.size() != name.size()) {
            continue;
        }
        const auto equal = std::inner_product(own.begin(), own.end(), name.begin(), std::size_t{0},
                                              std::plus<>(), std::equal_to<>());
        return equal + 1 == own.size();
    }
    return false;
}

/// The form of an object that is no sample.
HistoryObjectForm formOf(const JSON& json) {
    HistoryObjectForm form;
    unsigned seen = 0;
    int unknownCount = 0;
    bool typesFit = true;
    const JSON* unknownValue = nullptr;
    std::string_view unknownName;
    std::vector<std::string> members;
    for (const auto& item : json.items()) {
        members.push_back(item.key() + ":" + item.value().type_name());
        const unsigned field = fieldNamed(item.key());
        seen |= field;
        typesFit = typesFit && (field == 0 || isOfType(item.value(), field));
        if (field == 0) {
            ++unknownCount;
            unknownName = item.key();
            unknownValue = &item.value();
        }
    }
    const unsigned missing = requiredFields & ~seen;
    form.isDamagedSample = typesFit && unknownCount == 0 && missing == 0;
    if (typesFit && unknownCount == 1 && std::has_single_bit(missing)) {
        form.isDamagedSample =
            isNearlyName(unknownName, missing) && isOfType(*unknownValue, missing);
    }
    std::ranges::sort(members);
    for (const std::string& member : members) {
        form.signature += member + ",";
    }
    return form;
}

constexpr std::array<double, 23> powersOfTen = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                                1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

} // namespace

HistorySampleParser::Result HistorySampleParser::parse(std::string_view text,
                                                       StoredHistorySample& sample) {
    if (parsePlainForm(text, sample)) {
        return Result::sample;
    }
    return parseByLibrary(text, sample);
}

bool HistorySampleParser::parsePlainForm(std::string_view text, StoredHistorySample& sample) {
    const char* position = text.data();
    const char* const end = position + text.size();
    if (!take(position, end, '{')) {
        return false;
    }
    unsigned seen = 0;
    sample.hasUnknownFields = false;
    sample.resetsAt.reset();
    do {
        std::string_view name;
        if (!plainText(position, end, name) || !take(position, end, ':')) {
            return false;
        }
        const unsigned field = fieldNamed(name);
        if (field == 0 || (seen & field) != 0) {
            return false;
        }
        seen |= field;
        std::string_view value;
        bool read = false;
        switch (field) {
        case idField:
            read = plainText(position, end, value) && take(value, sample.id);
            break;
        case providerField:
            read = plainText(position, end, sample.provider);
            break;
        case windowField:
            read = plainText(position, end, sample.windowID);
            break;
        case capturedField:
            read = number(position, end, sample.capturedAt);
            break;
        case usedField:
            read = number(position, end, sample.usedPercent);
            break;
        default:
            read = number(position, end, sample.resetsAt.emplace());
        }
        if (!read) {
            return false;
        }
    } while (take(position, end, ','));
    if (!take(position, end, '}') || (seen & requiredFields) != requiredFields) {
        return false;
    }
    sample.text = {text.data(), static_cast<std::size_t>(position - text.data())};
    return true;
}

/// Digits that fit 53 bits over a power of ten up to 22 are both exact doubles, so one division
/// rounds correctly; the rest is left to the library.
bool HistorySampleParser::number(const char*& position, const char* end, double& value) {
    skipSpace(position, end);
    const char* const begin = position;
    const bool negative = position != end && *position == '-';
    position += negative;
    std::uint64_t digits = 0;
    int count = 0;
    int decimals = 0;
    const char* const firstDigit = position;
    const auto takeDigits = [&] {
        const char* const from = position;
        for (; position != end && isDigit(*position); ++position, ++count) {
            digits = digits * 10 + static_cast<std::uint64_t>(*position - '0');
        }
        return position != from;
    };
    if (!takeDigits() || (*firstDigit == '0' && position - firstDigit > 1)) {
        return false;
    }
    [[maybe_unused]] const char* point = nullptr;
    if (position != end && *position == '.') {
        point = position++;
        const int before = count;
        if (!takeDigits()) {
            return false;
        }
        decimals = count - before;
    }
    if (position == end || *position == 'e' || *position == 'E') {
        return false; // cut off, or a form that our writer does not use for such values
    }
    if (count <= 15 && decimals <= 22) {
        value = static_cast<double>(digits) / powersOfTen[static_cast<std::size_t>(decimals)];
        value = negative ? -value : value;
        return true;
    }
#ifdef __cpp_lib_to_chars
    const auto [stopped, error] = std::from_chars(begin, position, value);
    return error == std::errc() && stopped == position;
#else
    // Takes several times as long, and wants the locale's decimal point.
    std::array<char, 64> copy{};
    const auto length = static_cast<std::size_t>(position - begin);
    if (length >= copy.size()) {
        return false;
    }
    std::memcpy(copy.data(), begin, length);
    if (point) {
        copy[static_cast<std::size_t>(point - begin)] = *std::localeconv()->decimal_point;
    }
    char* stopped = nullptr;
    value = std::strtod(copy.data(), &stopped);
    return stopped == copy.data() + length;
#endif
}

HistorySampleParser::Result HistorySampleParser::parseByLibrary(std::string_view text,
                                                                StoredHistorySample& sample) {
    if (text.empty() || text.front() != '{') {
        return text.empty() ? Result::incomplete : Result::malformed;
    }
    const std::size_t length = objectLength(text);
    if (length == 0) {
        return Result::incomplete;
    }
    JSON json;
    try {
        json = parsedJSON(text.substr(0, length));
    } catch (const JSONDecodingError&) {
        return Result::malformed;
    }
    try {
        fromJSON(json, decoded_);
    } catch (const JSONDecodingError&) {
        form_ = formOf(json);
        form_.text = text.substr(0, length);
        return Result::unread;
    }
    sample.hasUnknownFields =
        !std::ranges::all_of(json.items(), [](const auto& item) { return fieldNamed(item.key()); });
    sample.id = decoded_.id;
    sample.provider = decoded_.provider.rawValue;
    sample.windowID = decoded_.windowID;
    sample.capturedAt = decoded_.capturedAt.time_since_epoch().count();
    sample.usedPercent = decoded_.usedPercent;
    sample.resetsAt.reset();
    if (decoded_.resetsAt) {
        sample.resetsAt = decoded_.resetsAt->time_since_epoch().count();
    }
    sample.text = text.substr(0, length);
    return Result::sample;
}

} // namespace vellmark
