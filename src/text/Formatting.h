#pragma once

#include "text/Instant.h"
#include "text/Localization.h"

#include <cstdint>
#include <string>

namespace vellmark {

/// Texts of numbers, spans and instants in the user's language and formats; every front end uses
/// these and no other. They are the words' language with the region's habits ("en" with "de_CH"
/// writes English with a 24-hour clock). Any number may come in: what is none is "–". Safe to use
/// from any thread.

/// A percentage with its sign as the locale writes it ("62%", "62 %"): whole, or with one decimal
/// below 10 when it is not whole.
std::string percentText(double percent, const Localization& words);

/// A count, its digits grouped as the locale does ("1,284", "1.284").
std::string integerText(std::int64_t value, const Localization& words);

/// A number with one decimal ("5.9", "5,9").
std::string decimalText(double value, const Localization& words);

/// An amount of money with its currency as the locale writes it ("$16.80"). A code that is no
/// currency's stands behind the amount as it is.
std::string moneyText(double amount, const std::string& currencyCode, const Localization& words);

/// What stands before a span: a preposition ("in 3 Tagen"), or nothing that governs it ("3 Tage vor
/// dem Reset").
enum class SpanForm { afterPreposition, alone };

/// A span in at most two units, rounded down to the smaller one: "1 h 27 min", "3 d 18 h",
/// "1 Std. 27 Min."; less than a minute is "under 1 min" by its own text.
std::string durationText(Seconds span, const Localization& words,
                         SpanForm form = SpanForm::afterPreposition);

/// A span in one unit: minutes up to 90, then hours up to 48, then days. Used where two units would
/// claim a precision that is not there.
std::string roughDurationText(Seconds span, const Localization& words,
                              SpanForm form = SpanForm::afterPreposition);

/// A forecast's span: two units below three hours, one above. After a preposition.
std::string forecastDurationText(Seconds span, const Localization& words);

/// The time of day ("4:15 PM", "16:15").
std::string timeText(Instant instant, const Localization& words);

/// The same to the second.
std::string exactTimeText(Instant instant, const Localization& words);

/// The day of an instant with its weekday, today and yesterday by these names ("Today, November
/// 20", "Mittwoch, 19. November").
std::string dayText(Instant instant, Instant now, const Localization& words);

/// An instant near `now`: time alone on the same day, weekday and time within the six days before
/// and after, else date and time
/// ("16:15", "Mo., 09:10", "2. Dez., 09:10").
std::string instantText(Instant instant, Instant now, const Localization& words);

/// Whether both are on one day of the calendar: `instantText` is then the time alone.
bool isSameDay(Instant first, Instant second, const Localization& words);

/// When something was, to the minute ("Nov 20, 2025 at 2:46 PM", "20.11.2025, 14:46").
std::string momentText(Instant instant, const Localization& words);

/// The parts of a date and a time that a text about a day is made of.
enum class DateForm {
    day,               ///< "Nov 14", "14. Nov."
    weekdayAndDay,     ///< "Fri, Nov 14", "Fr., 14. Nov."
    weekdayDayAndTime, ///< "Fri, Nov 14, 8:30 AM", "Fr., 14. Nov., 08:30"
    month,             ///< "Nov", "Nov."
    monthAndYear,      ///< "Nov 2025", "Nov. 2025"
    weekday,           ///< "Fri", "Fr"; alone
    hour,              ///< "8 AM", "08 Uhr"
};
std::string dateText(Instant instant, DateForm form, const Localization& words);

/// The day with which a week begins where the user is; 0 is Monday.
int firstWeekday(const Localization& words);

/// Date and time in the locale's numeric date and standard time style, for records.
std::string dateTimeText(Instant instant, const Localization& words);

} // namespace vellmark
