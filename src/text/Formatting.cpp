#include "text/Formatting.h"

#include "text/TimeZone.h"
#include "text/TimeZoneRules.h"
#include "text/UnicodeString.h"

#include <unicode/calendar.h>
#include <unicode/dtptngen.h>
#include <unicode/numberformatter.h>
#include <unicode/smpdtfmt.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string_view>
#include <utility>

namespace vellmark {

namespace {

namespace number = icu::number;

/// Stands for a figure that is none.
constexpr std::string_view noFigure = "–";

/// Figures beyond are nonsense of an agent; they shall not fill the screen.
constexpr double largestFigure = 1e9;

/// The words' language with the user's region: month names must be in the language of the sentence
/// around them, while order, clock and separators are the region's.
icu::Locale formatLocale(const Localization& words) {
    const icu::Locale user(words.localeIdentifier().c_str());
    const std::string& code = words.languageCode();
    return icu::Locale(Localization::hasLanguage(code) ? code.c_str() : "de", user.getCountry(),
                       nullptr, "calendar=gregorian;numbers=latn");
}

/// French writes narrow blanks within figures, which many fonts of terminals lack.
std::string plainText(const number::FormattedNumber& number, UErrorCode status) {
    std::string result;
    number.toString(status)
        .findAndReplace(icu::UnicodeString(u'\u202F'), icu::UnicodeString(u'\u00A0'))
        .toUTF8String(result);
    return U_SUCCESS(status) ? result : std::string(noFigure);
}

std::string formatted(const number::UnlocalizedNumberFormatter& formatter, double value,
                      const Localization& words) {
    UErrorCode status = U_ZERO_ERROR;
    return plainText(formatter.locale(formatLocale(words)).formatDouble(value, status), status);
}

/// Percentages are the most frequent figures, so their formatters are kept; unlike those of dates
/// they may be shared between threads.
const number::LocalizedNumberFormatter& percentFormatter(const Localization& words, int decimals) {
    static std::mutex mutex;
    static std::map<std::pair<std::string, int>, number::LocalizedNumberFormatter> formatters;
    const icu::Locale locale = formatLocale(words);
    const std::lock_guard lock(mutex);
    const auto [found, isNew] = formatters.try_emplace({locale.getName(), decimals});
    if (isNew) {
        found->second = number::NumberFormatter::with()
                            .unit(icu::MeasureUnit::getPercent())
                            .precision(number::Precision::fixedFraction(decimals))
                            .locale(locale);
    }
    return found->second;
}

/// ICU's releases differ in the blank before "PM"; a terminal and a search know the plain one.
icu::UnicodeString withPlainBlanks(icu::UnicodeString text) {
    for (const char16_t blank : {u'\u202F', u'\u00A0', u'\u2009'}) {
        text.findAndReplace(icu::UnicodeString(blank), icu::UnicodeString(u' '));
    }
    return text;
}

/// Stand for lengths of the locale: for the date of middle length because no choice of fields
/// describes it, for the times because to choose fields takes half of what a status line takes.
constexpr const char* middleDate = "date";
constexpr const char* timeOfDay = "time";
constexpr const char* exactTimeOfDay = "exact time";

/// A format with the fields of `skeleton`, in the order and with the clock that the locale prefers.
std::unique_ptr<icu::DateFormat> dateFormat(const char* skeleton, const icu::Locale& locale) {
    using icu::DateFormat;
    if (skeleton == middleDate) {
        return std::unique_ptr<DateFormat>(
            DateFormat::createDateInstance(DateFormat::kMedium, locale));
    }
    if (skeleton == timeOfDay || skeleton == exactTimeOfDay) {
        return std::unique_ptr<DateFormat>(DateFormat::createTimeInstance(
            skeleton == timeOfDay ? DateFormat::kShort : DateFormat::kMedium, locale));
    }
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::DateTimePatternGenerator> generator(
        icu::DateTimePatternGenerator::createInstance(locale, status));
    if (U_FAILURE(status)) {
        return nullptr;
    }
    auto format = std::make_unique<icu::SimpleDateFormat>(
        generator->getBestPattern(icu::UnicodeString(skeleton, -1, US_INV), status), locale,
        status);
    return U_SUCCESS(status) ? std::move(format) : nullptr;
}

/// Finding a format takes milliseconds, so they are kept; there are few, one for each locale and
/// skeleton. They are not to be shared between threads, hence the lock.
std::string dateText(Instant instant, const char* skeleton, const Localization& words) {
    static std::mutex mutex;
    static std::map<std::string, std::unique_ptr<icu::DateFormat>, std::less<>> formats;
    const icu::Locale locale = formatLocale(words);
    const std::string key = std::string(locale.getName()) + "/" + skeleton;
    const TimeZone timeZone = words.timeZone();
    const std::lock_guard lock(mutex);
    auto& format = formats[key];
    if (!format) {
        format = dateFormat(skeleton, locale);
    }
    if (!format) {
        return std::string(noFigure);
    }
    format->setTimeZone(*TimeZoneRules::of(timeZone).icuZone);
    icu::UnicodeString text;
    std::string result;
    withPlainBlanks(format->format(icuDate(instant), text)).toUTF8String(result);
    return result;
}

/// Whole units in a span, which may be negative or no number.
std::int64_t wholeUnits(Seconds span, Seconds unit) {
    const double units = std::floor(span / unit);
    return std::isnan(units) ? 0 : static_cast<std::int64_t>(std::clamp(units, 0.0, largestFigure));
}

std::string unitText(const char* key, std::int64_t count, const Localization& words) {
    return words.format(key, {count});
}

std::string daysText(std::int64_t count, const Localization& words, SpanForm form) {
    if (count == 1) {
        return words.text("duration.day");
    }
    return unitText(form == SpanForm::alone ? "duration.days.alone" : "duration.days", count,
                    words);
}

/// Days from `now`'s date to that of `instant`, by the calendar.
std::int64_t calendarDaysBetween(Instant now, Instant instant, const TimeZone& timeZone) {
    const auto dayNumber = [&](Instant moment) {
        const CalendarDate date = timeZone.calendarDate(moment);
        return std::chrono::sys_days(std::chrono::year(date.year) /
                                     std::chrono::month(static_cast<unsigned>(date.month)) /
                                     std::chrono::day(static_cast<unsigned>(date.day)))
            .time_since_epoch()
            .count();
    };
    return dayNumber(instant) - dayNumber(now);
}

} // namespace

std::string percentText(double percent, const Localization& words) {
    if (std::isnan(percent)) {
        return std::string(noFigure);
    }
    const double shown = std::clamp(percent, -largestFigure, largestFigure);
    const double tenths = std::nearbyint(shown * 10) / 10;
    const bool needsDecimal = std::abs(tenths) < 10 && tenths != std::nearbyint(tenths);
    // Adding zero turns a negative one, which would be written with its sign.
    const double value = (needsDecimal ? tenths : std::nearbyint(shown)) + 0.0;
    UErrorCode status = U_ZERO_ERROR;
    return plainText(percentFormatter(words, needsDecimal ? 1 : 0).formatDouble(value, status),
                     status);
}

std::string integerText(std::int64_t value, const Localization& words) {
    if (value > -1000 && value < 1000) {
        return std::to_string(value);
    }
    UErrorCode status = U_ZERO_ERROR;
    return plainText(
        number::NumberFormatter::withLocale(formatLocale(words)).formatInt(value, status), status);
}

std::string decimalText(double value, const Localization& words) {
    if (std::isnan(value)) {
        return std::string(noFigure);
    }
    return formatted(number::NumberFormatter::with().precision(number::Precision::fixedFraction(1)),
                     std::clamp(value, -largestFigure, largestFigure), words);
}

std::string moneyText(double amount, const std::string& currencyCode, const Localization& words) {
    if (std::isnan(amount)) {
        return std::string(noFigure);
    }
    constexpr double largestAmount = 1e15;
    const double shown = std::clamp(amount, -largestAmount, largestAmount);
    const bool isCode =
        currencyCode.size() == 3 && std::ranges::all_of(currencyCode, [](char letter) {
            return (letter >= 'A' && letter <= 'Z') || (letter >= 'a' && letter <= 'z');
        });
    if (!isCode) {
        const std::string figure = formatted(
            number::NumberFormatter::with().precision(number::Precision::fixedFraction(2)), shown,
            words);
        return currencyCode.empty() ? figure : figure + " " + currencyCode;
    }
    UErrorCode status = U_ZERO_ERROR;
    const icu::CurrencyUnit currency(unicodeString(currencyCode).toUpper().getTerminatedBuffer(),
                                     status);
    return formatted(number::NumberFormatter::with().unit(currency), shown, words);
}

std::string durationText(Seconds span, const Localization& words, SpanForm form) {
    const std::int64_t days = wholeUnits(span, oneDay);
    const std::int64_t hours = wholeUnits(span, oneHour);
    const std::int64_t minutes = wholeUnits(span, oneMinute);
    const auto both = [&](std::string first, const char* second, std::int64_t secondCount) {
        return secondCount == 0 ? first : first + ' ' + unitText(second, secondCount, words);
    };
    if (days > 0) {
        return both(daysText(days, words, form), "duration.hours", hours - days * 24);
    }
    if (hours > 0) {
        return both(unitText("duration.hours", hours, words), "duration.minutes",
                    minutes - hours * 60);
    }
    return minutes > 0 ? unitText("duration.minutes", minutes, words)
                       : words.text("duration.underMinute");
}

std::string roughDurationText(Seconds span, const Localization& words, SpanForm form) {
    constexpr std::int64_t mostMinutes = 90;
    constexpr std::int64_t mostHours = 48;
    const std::int64_t minutes = wholeUnits(span, oneMinute);
    if (minutes <= mostMinutes) {
        return minutes > 0 ? unitText("duration.minutes", minutes, words)
                           : words.text("duration.underMinute");
    }
    const std::int64_t hours = wholeUnits(span, oneHour);
    return hours <= mostHours ? unitText("duration.hours", hours, words)
                              : daysText(wholeUnits(span, oneDay), words, form);
}

std::string forecastDurationText(Seconds span, const Localization& words) {
    return span < 3 * oneHour ? durationText(span, words) : roughDurationText(span, words);
}

std::string timeText(Instant instant, const Localization& words) {
    return dateText(instant, timeOfDay, words);
}

std::string exactTimeText(Instant instant, const Localization& words) {
    return dateText(instant, exactTimeOfDay, words);
}

std::string dayText(Instant instant, Instant now, const Localization& words) {
    const std::int64_t days = calendarDaysBetween(now, instant, words.timeZone());
    if (days == 0 || days == -1) {
        return words.format(days == 0 ? "day.today" : "day.yesterday",
                            {dateText(instant, "MMMMd", words)});
    }
    return dateText(instant, "EEEEMMMMd", words);
}

std::string instantText(Instant instant, Instant now, const Localization& words) {
    const std::int64_t days = calendarDaysBetween(now, instant, words.timeZone());
    if (days == 0) {
        return timeText(instant, words);
    }
    return dateText(instant, std::abs(days) < 7 ? "Ejm" : "MMMdjm", words);
}

bool isSameDay(Instant first, Instant second, const Localization& words) {
    return calendarDaysBetween(first, second, words.timeZone()) == 0;
}

std::string momentText(Instant instant, const Localization& words) {
    return words.format("moment.dateTime",
                        {dateText(instant, middleDate, words), timeText(instant, words)});
}

std::string dateText(Instant instant, DateForm form, const Localization& words) {
    switch (form) {
    case DateForm::day:
        return dateText(instant, "MMMd", words);
    case DateForm::weekdayAndDay:
        return dateText(instant, "EMMMd", words);
    case DateForm::weekdayDayAndTime:
        return dateText(instant, "EMMMdjm", words);
    case DateForm::month:
        return dateText(instant, "LLL", words);
    case DateForm::monthAndYear:
        return dateText(instant, "yMMM", words);
    case DateForm::weekday:
        return dateText(instant, "ccc", words);
    case DateForm::hour:
        break;
    }
    return dateText(instant, "j", words);
}

int firstWeekday(const Localization& words) {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::Calendar> calendar(
        icu::Calendar::createInstance(formatLocale(words), status));
    if (U_FAILURE(status)) {
        return 0;
    }
    const int first = calendar->getFirstDayOfWeek(status); // 1 is Sunday
    return U_SUCCESS(status) ? (first + 5) % 7 : 0;
}

std::string dateTimeText(Instant instant, const Localization& words) {
    return dateText(instant, "yMdjms", words);
}

} // namespace vellmark
