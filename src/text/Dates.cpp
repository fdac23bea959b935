#include "text/Dates.h"

#include "text/TimeZoneRules.h"
#include "text/UnicodeString.h"

#include <unicode/gregocal.h>
#include <unicode/smpdtfmt.h>

#include <array>
#include <chrono>
#include <map>
#include <mutex>

namespace vellmark {

namespace {

/// No text that is a date is longer.
constexpr std::size_t longestText = 200;

/// A strict formatter for `pattern`. Making one costs a hundred times its use, so they are kept;
/// patterns are constants of the program, hence few. ICU's formatters are not to be shared between
/// threads: `use` runs under the lock.
template<typename Use>
auto withFormatter(std::string_view pattern, Use use) {
    static std::mutex mutex;
    static std::map<std::string, std::unique_ptr<icu::SimpleDateFormat>, std::less<>> formatters;
    const std::lock_guard lock(mutex);
    auto found = formatters.find(pattern);
    if (found == formatters.end()) {
        UErrorCode status = U_ZERO_ERROR;
        auto made = std::make_unique<icu::SimpleDateFormat>(
            unicodeString(pattern), icu::Locale("en", "US", "POSIX"), status);
        if (U_FAILURE(status)) {
            made.reset();
        } else {
            made->setLenient(false);
        }
        found = formatters.emplace(pattern, std::move(made)).first;
    }
    return use(found->second.get());
}

/// The fields that a pattern may lack.
std::unique_ptr<icu::Calendar> defaultFields(const TimeZone& zone) {
    UErrorCode status = U_ZERO_ERROR;
    auto calendar = std::make_unique<icu::GregorianCalendar>(*TimeZoneRules::of(zone).icuZone,
                                                             icu::Locale::getRoot(), status);
    if (U_FAILURE(status)) {
        return nullptr;
    }
    calendar->setLenient(false);
    calendar->clear();
    calendar->set(2000, UCAL_JANUARY, 1, 0, 0, 0);
    return calendar;
}

/// Reads `length` ASCII digits from the front of `text` and removes them.
std::optional<int> takeNumber(std::string_view& text, std::size_t length) {
    int number = 0;
    if (text.size() < length) {
        return std::nullopt;
    }
    for (const char digit : text.substr(0, length)) {
        if (digit < '0' || digit > '9') {
            return std::nullopt;
        }
        number = number * 10 + (digit - '0');
    }
    text.remove_prefix(length);
    return number;
}

bool takeSeparator(std::string_view& text, char separator) {
    if (text.empty() || text.front() != separator) {
        return false;
    }
    text.remove_prefix(1);
    return true;
}

/// "2025-06-01T14:00:00", its fields within their ranges.
std::optional<CalendarDate> takeDateTime(std::string_view& text) {
    const auto year = takeNumber(text, 4);
    std::array<int, 5> fields{};
    constexpr std::string_view separators = "--T::";
    for (std::size_t index = 0; index < fields.size(); ++index) {
        if (!takeSeparator(text, separators[index])) {
            return std::nullopt;
        }
        const auto field = takeNumber(text, 2);
        if (!field) {
            return std::nullopt;
        }
        fields[index] = *field;
    }
    const auto [month, day, hour, minute, second] = fields;
    const auto date = std::chrono::year(year.value_or(0)) /
                      std::chrono::month(static_cast<unsigned>(month)) /
                      std::chrono::day(static_cast<unsigned>(day));
    if (!year || !date.ok() || hour > 23 || minute > 59 || second > 59) {
        return std::nullopt;
    }
    return CalendarDate{*year, month, day, hour, minute, second};
}

/// ".125": digits after a point, as a share of a second.
std::optional<double> takeFraction(std::string_view& text) {
    if (!takeSeparator(text, '.')) {
        return std::nullopt;
    }
    constexpr double finestWeight = 1e12;
    double fraction = 0;
    double weight = 1;
    const std::size_t before = text.size();
    while (const auto digit = takeNumber(text, 1)) {
        if (weight < finestWeight) {
            fraction = fraction * 10 + *digit;
            weight *= 10;
        }
    }
    return text.size() == before ? std::nullopt : std::optional(fraction / weight);
}

/// "Z", "+02:00" or "-0230" in seconds east of UTC.
std::optional<double> takeOffset(std::string_view& text) {
    if (takeSeparator(text, 'Z')) {
        return 0;
    }
    const bool isWest = takeSeparator(text, '-');
    if (!isWest && !takeSeparator(text, '+')) {
        return std::nullopt;
    }
    const auto hours = takeNumber(text, 2);
    takeSeparator(text, ':');
    const auto minutes = takeNumber(text, 2);
    if (!hours || !minutes || *hours > 23 || *minutes > 59) {
        return std::nullopt;
    }
    return (isWest ? -60.0 : 60.0) * (*hours * 60 + *minutes);
}

} // namespace

std::optional<Instant> parseDate(std::string_view text, std::string_view pattern,
                                 const TimeZone& zone) {
    if (text.empty() || text.size() > longestText) {
        return std::nullopt;
    }
    const auto fields = defaultFields(zone);
    return withFormatter(pattern, [&](icu::SimpleDateFormat* format) -> std::optional<Instant> {
        if (format == nullptr || fields == nullptr) {
            return std::nullopt;
        }
        const icu::UnicodeString source = unicodeString(text);
        icu::ParsePosition position(0);
        format->parse(source, *fields, position);
        if (position.getErrorIndex() >= 0 || position.getIndex() != source.length()) {
            return std::nullopt;
        }
        UErrorCode status = U_ZERO_ERROR;
        const UDate date = fields->getTime(status);
        return U_FAILURE(status) ? std::nullopt
                                 : std::optional(instantFromUnixSeconds(date / 1000));
    });
}

std::string formatDate(Instant instant, std::string_view pattern, const TimeZone& zone) {
    return withFormatter(pattern, [&](icu::SimpleDateFormat* format) {
        std::string result;
        if (format != nullptr) {
            format->setTimeZone(*TimeZoneRules::of(zone).icuZone);
            icu::UnicodeString text;
            format->format(icuDate(instant), text).toUTF8String(result);
        }
        return result;
    });
}

std::optional<Instant> parseISO8601(std::string_view text, bool fractionalSeconds) {
    const auto date = takeDateTime(text);
    const auto fraction = fractionalSeconds ? takeFraction(text) : std::optional<double>(0);
    const auto offset = takeOffset(text);
    if (!date || !fraction || !offset || !text.empty()) {
        return std::nullopt;
    }
    return TimeZone::utc().instant(*date) + Seconds(*fraction - *offset);
}

} // namespace vellmark
