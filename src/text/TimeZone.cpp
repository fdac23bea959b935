#include "text/TimeZone.h"

#include "text/TimeZoneRules.h"
#include "text/UnicodeString.h"

#include <unicode/simpletz.h>
#include <unicode/timezone.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <mutex>

namespace vellmark {

namespace {

constexpr double millisecondsPerSecond = 1000;
/// About 28,500 years; the standard library's calendar ends at year 32767.
constexpr double farthestSeconds = 9e11;

struct Abbreviation {
    std::string_view name;
    const char* identifier;
};

/// The abbreviations in common use and the zones that people mean by them; sorted. ICU's own list
/// of three-letter names dates from other meanings ("AST" is Alaska there).
constexpr std::array abbreviations{
    Abbreviation{"ADT", "America/Halifax"},
    Abbreviation{"AKDT", "America/Juneau"},
    Abbreviation{"AKST", "America/Juneau"},
    Abbreviation{"ART", "America/Argentina/Buenos_Aires"},
    Abbreviation{"AST", "America/Halifax"},
    Abbreviation{"BDT", "Asia/Dhaka"},
    Abbreviation{"BRST", "America/Sao_Paulo"},
    Abbreviation{"BRT", "America/Sao_Paulo"},
    Abbreviation{"BST", "Europe/London"},
    Abbreviation{"CAT", "Africa/Harare"},
    Abbreviation{"CDT", "America/Chicago"},
    Abbreviation{"CEST", "Europe/Paris"},
    Abbreviation{"CET", "Europe/Paris"},
    Abbreviation{"CLST", "America/Santiago"},
    Abbreviation{"CLT", "America/Santiago"},
    Abbreviation{"COT", "America/Bogota"},
    Abbreviation{"CST", "America/Chicago"},
    Abbreviation{"EAT", "Africa/Nairobi"},
    Abbreviation{"EDT", "America/New_York"},
    Abbreviation{"EEST", "Europe/Athens"},
    Abbreviation{"EET", "Europe/Athens"},
    Abbreviation{"EST", "America/New_York"},
    Abbreviation{"GMT", "Etc/GMT"},
    Abbreviation{"GST", "Asia/Dubai"},
    Abbreviation{"HKT", "Asia/Hong_Kong"},
    Abbreviation{"HST", "Pacific/Honolulu"},
    Abbreviation{"ICT", "Asia/Bangkok"},
    Abbreviation{"IRST", "Asia/Tehran"},
    Abbreviation{"IST", "Asia/Kolkata"},
    Abbreviation{"JST", "Asia/Tokyo"},
    Abbreviation{"KST", "Asia/Seoul"},
    Abbreviation{"MDT", "America/Denver"},
    Abbreviation{"MSD", "Europe/Moscow"},
    Abbreviation{"MSK", "Europe/Moscow"},
    Abbreviation{"MST", "America/Denver"},
    Abbreviation{"NDT", "America/St_Johns"},
    Abbreviation{"NST", "America/St_Johns"},
    Abbreviation{"NZDT", "Pacific/Auckland"},
    Abbreviation{"NZST", "Pacific/Auckland"},
    Abbreviation{"PDT", "America/Los_Angeles"},
    Abbreviation{"PET", "America/Lima"},
    Abbreviation{"PHT", "Asia/Manila"},
    Abbreviation{"PKT", "Asia/Karachi"},
    Abbreviation{"PST", "America/Los_Angeles"},
    Abbreviation{"SGT", "Asia/Singapore"},
    Abbreviation{"TRT", "Europe/Istanbul"},
    Abbreviation{"UTC", "Etc/UTC"},
    Abbreviation{"WAT", "Africa/Lagos"},
    Abbreviation{"WEST", "Europe/Lisbon"},
    Abbreviation{"WET", "Europe/Lisbon"},
    Abbreviation{"WIB", "Asia/Jakarta"},
    Abbreviation{"WIT", "Asia/Jayapura"},
};
static_assert(std::ranges::is_sorted(abbreviations, {}, &Abbreviation::name));

/// Where the system keeps its choice of zone. Looking there costs a microsecond; working out which
/// zone it is may cost milliseconds.
struct SystemZoneChoice {
    std::string variable;
    std::string link;
    bool operator==(const SystemZoneChoice&) const = default;

    static SystemZoneChoice now() {
        const char* variable = std::getenv("TZ");
        std::error_code ignored;
        return {variable == nullptr ? "" : variable,
                std::filesystem::read_symlink("/etc/localtime", ignored).string()};
    }
};

double localSeconds(const CalendarDate& date) {
    using namespace std::chrono;
    // Months before or beyond the year are carried into it.
    const std::int64_t monthIndex = std::int64_t{date.year} * 12 + date.month - 1;
    const std::int64_t yearNumber = monthIndex / 12 - (monthIndex % 12 < 0 ? 1 : 0);
    const auto monthNumber = static_cast<unsigned>(monthIndex - yearNumber * 12 + 1);
    const std::int64_t within = std::clamp<std::int64_t>(yearNumber, -28000, 28000);
    const sys_days first = year(static_cast<int>(within)) / month(monthNumber) / 1;
    return static_cast<double>(first.time_since_epoch().count() - 1 + std::int64_t{date.day}) *
               86400 +
           date.hour * 3600.0 + date.minute * 60.0 + date.second;
}

} // namespace

UDate icuDate(Instant instant) {
    const double seconds = unixSeconds(instant);
    return std::isnan(seconds)
               ? 0
               : std::clamp(seconds, -farthestSeconds, farthestSeconds) * millisecondsPerSecond;
}

TimeZone TimeZoneRules::timeZone(std::unique_ptr<icu::TimeZone> zone) {
    std::string identifier;
    icu::UnicodeString name;
    zone->getID(name).toUTF8String(identifier);
    // All zones that ICU makes are of this class.
    auto* basic = dynamic_cast<icu::BasicTimeZone*>(zone.get());
    if (basic == nullptr) {
        return TimeZone::utc();
    }
    static_cast<void>(zone.release()); // it is `basic`
    return TimeZone(std::make_shared<const TimeZoneRules>(
        std::unique_ptr<icu::BasicTimeZone>(basic), std::move(identifier)));
}

TimeZone TimeZone::system() {
    static std::mutex mutex;
    static std::optional<std::pair<SystemZoneChoice, TimeZone>> known;
    const SystemZoneChoice choice = SystemZoneChoice::now();
    const std::lock_guard lock(mutex);
    if (!known || known->first != choice) {
        std::unique_ptr<icu::TimeZone> zone(icu::TimeZone::detectHostTimeZone());
        known.emplace(choice, zone ? TimeZoneRules::timeZone(std::move(zone)) : utc());
    }
    return known->second;
}

TimeZone TimeZone::utc() {
    static const TimeZone zone(std::make_shared<const TimeZoneRules>(
        std::make_unique<icu::SimpleTimeZone>(0, icu::UnicodeString("UTC")), "UTC"));
    return zone;
}

std::optional<TimeZone> TimeZone::named(std::string_view identifier) {
    std::unique_ptr<icu::TimeZone> zone(icu::TimeZone::createTimeZone(unicodeString(identifier)));
    if (!zone || *zone == icu::TimeZone::getUnknown()) {
        return std::nullopt;
    }
    return TimeZoneRules::timeZone(std::move(zone));
}

std::optional<TimeZone> TimeZone::abbreviated(std::string_view abbreviation) {
    std::string upper(abbreviation);
    std::ranges::transform(upper, upper.begin(), [](char letter) {
        return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
    });
    const auto found = std::ranges::lower_bound(abbreviations, upper, {}, &Abbreviation::name);
    if (found == abbreviations.end() || found->name != upper) {
        return std::nullopt;
    }
    return named(found->identifier);
}

TimeZone TimeZone::fixedOffset(Seconds eastOfUTC) {
    const double seconds = std::clamp(eastOfUTC.count(), -86400.0, 86400.0);
    return TimeZoneRules::timeZone(std::make_unique<icu::SimpleTimeZone>(
        static_cast<std::int32_t>(seconds * millisecondsPerSecond), icu::UnicodeString(u"offset")));
}

const std::string& TimeZone::identifier() const {
    return rules_->identifier;
}

CalendarDate TimeZone::calendarDate(Instant instant) const {
    using namespace std::chrono;
    const UDate date = icuDate(instant);
    std::int32_t rawOffset = 0;
    std::int32_t dstOffset = 0;
    UErrorCode status = U_ZERO_ERROR;
    rules_->icuZone->getOffset(date, false, rawOffset, dstOffset, status);
    const auto local = static_cast<std::int64_t>(
        std::floor((date + rawOffset + dstOffset) / millisecondsPerSecond));
    const auto days = floor<std::chrono::days>(sys_seconds(seconds(local)));
    const year_month_day day(days);
    const auto time =
        static_cast<int>(local - std::int64_t{86400} * days.time_since_epoch().count());
    return {.year = static_cast<int>(day.year()),
            .month = static_cast<int>(static_cast<unsigned>(day.month())),
            .day = static_cast<int>(static_cast<unsigned>(day.day())),
            .hour = time / 3600,
            .minute = time / 60 % 60,
            .second = time % 60};
}

Instant TimeZone::instant(const CalendarDate& date) const {
    const double local = localSeconds(date);
    std::int32_t rawOffset = 0;
    std::int32_t dstOffset = 0;
    UErrorCode status = U_ZERO_ERROR;
    // Uses the offset from before a change of the clocks: a skipped time comes out later by the
    // step, and of a repeated one the first is taken.
    rules_->icuZone->getOffsetFromLocal(local * millisecondsPerSecond, UCAL_TZ_LOCAL_FORMER,
                                        UCAL_TZ_LOCAL_FORMER, rawOffset, dstOffset, status);
    return instantFromUnixSeconds(local - (rawOffset + dstOffset) / millisecondsPerSecond);
}

} // namespace vellmark
