#include "text/Dates.h"
#include "text/Formatting.h"

#include <gtest/gtest.h>

#include <limits>
#include <utility>

namespace vellmark {

namespace {

const char* const zurichName = "Europe/Zurich";

const Localization english("en", "en_US", zurichName);
const Localization german("de", "de_DE", zurichName);

Instant zurich(CalendarDate date) {
    return TimeZone::named(zurichName)->instant(date);
}

} // namespace

TEST(Formatting, Percentages) {
    const std::pair<double, const char*> cases[] = {
        {62, "62%"},   {9.5, "9.5%"}, {0.4, "0.4%"},   {0.04, "0%"},
        {9.96, "10%"}, {-0.01, "0%"}, {-4.5, "-4.5%"},
    };
    for (const auto& [percent, text] : cases) {
        EXPECT_EQ(percentText(percent, english), text);
    }
    // What is used and what is left add up to 100 when both are halves.
    EXPECT_EQ(percentText(42.5, english), "42%");
    EXPECT_EQ(percentText(57.5, english), "58%");
}

TEST(Formatting, Spans) {
    const std::tuple<double, const char*, const char*, const char*> cases[] = {
        {59, "under 1 min", "under 1 min", "under 1 min"},
        {60, "1 min", "1 min", "1 min"},
        {87 * 60, "1 h 27 min", "87 min", "1 h 27 min"},
        {90 * 60 + 59, "1 h 30 min", "90 min", "1 h 30 min"},
        {91 * 60, "1 h 31 min", "1 h", "1 h 31 min"},
        {3 * 3600 - 1, "2 h 59 min", "2 h", "2 h 59 min"},
        {3 * 3600 + 600, "3 h 10 min", "3 h", "3 h"},
        {43 * 3600, "1 d 19 h", "43 h", "43 h"},
        {3 * 86400 + 18.9 * 3600, "3 d 18 h", "3 d", "3 d"},
        {86400 + 3599, "1 d", "24 h", "24 h"},
    };
    for (const auto& [seconds, exact, rough, forecast] : cases) {
        const Seconds span(seconds);
        EXPECT_EQ(durationText(span, english), exact);
        EXPECT_EQ(roughDurationText(span, english), rough);
        EXPECT_EQ(forecastDurationText(span, english), forecast);
    }
}

TEST(Formatting, InstantsNameTheirDayWhenItIsNotToday) {
    const Instant now = zurich({2026, 11, 28, 23, 30, 0});
    const std::pair<CalendarDate, const char*> cases[] = {
        {{2026, 11, 28, 16, 15, 0}, "4:15 PM"},        {{2026, 11, 28, 0, 0, 0}, "12:00 AM"},
        {{2026, 11, 29, 0, 10, 0}, "Sun 12:10 AM"},    {{2026, 12, 4, 9, 10, 0}, "Fri 9:10 AM"},
        {{2026, 12, 5, 9, 10, 0}, "Dec 5, 9:10 AM"},   {{2026, 11, 22, 9, 10, 0}, "Sun 9:10 AM"},
        {{2026, 11, 21, 9, 10, 0}, "Nov 21, 9:10 AM"},
    };
    for (const auto& [date, text] : cases) {
        EXPECT_EQ(instantText(zurich(date), now, english), text);
    }
    EXPECT_EQ(momentText(now, english), "Nov 28, 2026 at 11:30 PM");
    EXPECT_EQ(dateTimeText(now, english), "11/28/2026, 11:30:00 PM");
}

TEST(Formatting, TheRegionChoosesTheClockAndTheLanguageTheNames) {
    const Instant now = zurich({2026, 11, 28, 12, 0, 0});
    const Instant reset = zurich({2026, 12, 8, 16, 15, 0});
    EXPECT_EQ(instantText(reset, now, Localization("en", "de_CH", zurichName)), "8 Dec, 16:15");
    EXPECT_EQ(timeText(reset, Localization("en", "fr_FR", zurichName)), "16:15");
    EXPECT_EQ(timeText(reset, Localization("en", "en_US", "Asia/Tokyo")), "12:15 AM");
    // Germans in America: no locale of its own, and the clock is the country's.
    EXPECT_EQ(timeText(reset, Localization("de", "de_US", zurichName)), "4:15 PM");
    EXPECT_EQ(exactTimeText(reset, Localization("de", "de_US", zurichName)), "4:15:00 PM");
    EXPECT_EQ(exactTimeText(reset, Localization("de", "de_CH", zurichName)), "16:15:00");
    EXPECT_EQ(instantText(reset, now, Localization("ar", "", zurichName)), "8. Dez., 16:15");
    EXPECT_EQ(percentText(62, Localization("en", "ar_EG", zurichName)), "62%");
    EXPECT_EQ(dateTimeText(now, Localization("de", "th_TH", zurichName)), "28.11.2026, 12:00:00");
}

TEST(Formatting, EveryLanguageHasItsOwnForms) {
    struct Case {
        Localization words;
        const char* percent;
        const char* count;
        const char* sooner;
        const char* later;
        const char* moment;
        const char* span;
    };
    const Instant now = zurich({2026, 11, 28, 9, 5, 0});
    for (const Case& test : {
             Case{german, "9,5\u00A0%", "12.840", "So., 09:05", "8. Dez., 09:05",
                  "28.11.2026, 09:05", "3 Tagen 18 Std."},
             Case{english, "9.5%", "12,840", "Sun 9:05 AM", "Dec 8, 9:05 AM",
                  "Nov 28, 2026 at 9:05 AM", "3 d 18 h"},
             Case{Localization("fr", "fr_FR", zurichName), "9,5\u00A0%", "12\u00A0840",
                  "dim. 09:05", "8 déc., 09:05", "28 nov. 2026 à 09:05", "3 j 18 h"},
             Case{Localization("it", "it_IT", zurichName), "9,5%", "12.840", "dom 09:05",
                  "8 dic, 09:05", "28 nov 2026, 09:05", "3 g 18 h"},
             Case{Localization("es", "es_ES", zurichName), "9,5\u00A0%", "12.840", "dom, 9:05",
                  "8 dic, 9:05", "28 nov 2026, 9:05", "3 d 18 h"},
         }) {
        EXPECT_EQ(percentText(9.5, test.words), test.percent);
        EXPECT_EQ(integerText(12840, test.words), test.count);
        EXPECT_EQ(instantText(now + Seconds(86400), now, test.words), test.sooner);
        EXPECT_EQ(instantText(now + Seconds(10 * 86400), now, test.words), test.later);
        EXPECT_EQ(momentText(now, test.words), test.moment);
        EXPECT_EQ(durationText(Seconds(90 * 3600), test.words), test.span);
    }
}

TEST(Formatting, Money) {
    EXPECT_EQ(moneyText(1016.8, "USD", english), "$1,016.80");
    EXPECT_EQ(moneyText(16.8, "USD", german), "16,80\u00A0$");
    EXPECT_EQ(moneyText(-3, "jpy", english), "-¥3");
    EXPECT_EQ(moneyText(16.8, "credits", english), "16.80 credits");
    EXPECT_EQ(moneyText(16.8, "", english), "16.80");
    EXPECT_EQ(moneyText(16.8, "\xFF\xFF\xFF", english), "16.80 \xFF\xFF\xFF");
}

TEST(Formatting, NoNumberIsTooStrange) {
    const Localization& words = english;
    const double infinity = std::numeric_limits<double>::infinity();
    const double none = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(percentText(none, words), "–");
    EXPECT_EQ(moneyText(none, "USD", words), "–");
    EXPECT_EQ(durationText(Seconds(none), words), "under 1 min");
    for (const double number : {infinity, -infinity, none, 1e300, -1e300}) {
        EXPECT_LT(percentText(number, words).size(), 20U);
        EXPECT_LT(moneyText(number, "USD", words).size(), 40U);
        EXPECT_LT(durationText(Seconds(number), words).size(), 40U);
        EXPECT_LT(roughDurationText(Seconds(number), words).size(), 40U);
        EXPECT_FALSE(instantText(Instant(Seconds(number)), Instant(), words).empty());
        EXPECT_FALSE(dateTimeText(Instant(Seconds(number)), words).empty());
    }
    EXPECT_EQ(integerText(std::numeric_limits<std::int64_t>::min(), words),
              "-9,223,372,036,854,775,808");
}

} // namespace vellmark
