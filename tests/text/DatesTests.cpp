#include "text/Dates.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <string>
#include <utility>

namespace vellmark {

namespace {

TimeZone zurich() {
    return *TimeZone::named("Europe/Zurich");
}

std::string shown(std::optional<Instant> instant, const TimeZone& zone = TimeZone::utc()) {
    return instant ? formatDate(*instant, "yyyy-MM-dd HH:mm:ss", zone) : "-";
}

} // namespace

TEST(Dates, PatternsAreReadStrictly) {
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"3pm", "ha", "2000-01-01 15:00:00"},
        {"9:30am", "h:mma", "2000-01-01 09:30:00"},
        {"9:30AM", "h:mma", "2000-01-01 09:30:00"},
        {"Nov 24 at 9:30am", "MMM d 'at' h:mma", "2000-11-24 09:30:00"},
        {"2025-06-01 14:00:09", "yyyy-MM-dd HH:mm:ss", "2025-06-01 14:00:09"},
        {"3pm ", "ha", "-"},
        {"3pm (Europe/Zurich)", "ha", "-"},
        {"9:30", "h:mma", "-"},
        {"Nov 24 at 9am", "MMM d 'at' h:mma", "-"},
        {"Mai 24 at 9am", "MMM d 'at' ha", "-"},
        {"2025-02-29 14:00:00", "yyyy-MM-dd HH:mm:ss", "-"},
        {"2025-06-01 24:00:00", "yyyy-MM-dd HH:mm:ss", "-"},
        {"", "ha", "-"},
        {"\xFFpm", "ha", "-"},
    };
    for (const auto& [text, pattern, expected] : cases) {
        EXPECT_EQ(shown(parseDate(text, pattern, zurich()), zurich()), expected) << text;
    }
    EXPECT_FALSE(parseDate(std::string(5000000, '3'), "ha", zurich()));
}

TEST(Dates, ZonesKnowTheirClockChanges) {
    const auto instant = [](int month, int day, int hour, int minute) {
        return zurich().instant({2025, month, day, hour, minute, 0});
    };
    EXPECT_EQ(shown(instant(1, 15, 12, 0)), "2025-01-15 11:00:00");
    EXPECT_EQ(shown(instant(7, 15, 12, 0)), "2025-07-15 10:00:00");
    // 2:30 does not exist on 30 March and exists twice on 26 October.
    EXPECT_EQ(shown(instant(3, 30, 2, 30)), "2025-03-30 01:30:00");
    EXPECT_EQ(shown(instant(3, 30, 2, 30), zurich()), "2025-03-30 03:30:00");
    EXPECT_EQ(shown(instant(10, 26, 2, 30)), "2025-10-26 00:30:00");
    EXPECT_EQ(zurich().calendarDate(instant(10, 26, 2, 30) + Seconds(3600)),
              (CalendarDate{2025, 10, 26, 2, 30, 0}));
}

TEST(Dates, FieldsOutOfRangeAreCarriedOver) {
    EXPECT_EQ(shown(TimeZone::utc().instant({2025, 12, 32, 25, 61, 61})), "2026-01-02 02:02:01");
    EXPECT_EQ(shown(TimeZone::utc().instant({2025, 14, 1, 0, 0, 0})), "2026-02-01 00:00:00");
    EXPECT_EQ(shown(TimeZone::utc().instant({2025, 0, 0, 0, 0, -1})), "2024-11-29 23:59:59");
    const int far = std::numeric_limits<int>::max();
    TimeZone::utc().instant({far, far, far, far, far, far});
    TimeZone::utc().instant({-far, -far, -far, -far, -far, -far});
}

TEST(Dates, CalendarsComeBackAsTheyWent) {
    for (const char* name : {"Europe/Zurich", "America/St_Johns", "Asia/Kathmandu", "Etc/UTC"}) {
        const TimeZone zone = *TimeZone::named(name);
        for (double hours = -300000; hours < 300000; hours += 997) {
            const Instant instant(Seconds(hours * 3600));
            const CalendarDate date = zone.calendarDate(instant);
            const Instant again = zone.instant(date);
            ASSERT_EQ(zone.calendarDate(again), date) << name << " " << hours;
        }
    }
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_GT(zurich().calendarDate(Instant(Seconds(infinity))).year, 20000);
    EXPECT_LT(zurich().calendarDate(Instant(Seconds(-infinity))).year, -20000);
}

TEST(Dates, ZonesAreKnownByNameAndAbbreviation) {
    EXPECT_FALSE(TimeZone::named("Europe/Vellmark"));
    EXPECT_FALSE(TimeZone::named(""));
    EXPECT_EQ(TimeZone::abbreviated("jst")->identifier(), "Asia/Tokyo");
    EXPECT_EQ(TimeZone::abbreviated("AST")->identifier(), "America/Halifax");
    EXPECT_FALSE(TimeZone::abbreviated("XYZ"));
    EXPECT_EQ(shown(TimeZone::fixedOffset(Seconds(-4 * 3600)).instant({2025, 6, 1, 14, 0, 0})),
              "2025-06-01 18:00:00");
}

TEST(Dates, TheSystemsZoneFollowsTheSystem) {
    const char* before = std::getenv("TZ");
    const std::string saved = before == nullptr ? "" : before;
    setenv("TZ", "Asia/Tokyo", 1);
    EXPECT_EQ(TimeZone::system().calendarDate(Instant()).hour, 9);
    setenv("TZ", "America/New_York", 1);
    EXPECT_EQ(TimeZone::system().calendarDate(Instant()).hour, 19);
    saved.empty() ? unsetenv("TZ") : setenv("TZ", saved.c_str(), 1);
}

TEST(Dates, InternetDateTimes) {
    const std::pair<std::string, double> cases[] = {
        {"2025-06-01T14:00:00Z", 1748786400},        {"2025-06-01T14:00:00+02:00", 1748779200},
        {"2025-06-01T14:00:00-0230", 1748795400},    {"2024-02-29T23:59:59Z", 1709251199},
        {"2025-06-01T14:00:00.250Z", 1748786400.25}, {"2025-06-01T14:00:00.5+00:00", 1748786400.5},
    };
    for (const auto& [text, unixTime] : cases) {
        const bool hasFraction = text.find('.') != std::string::npos;
        const auto read = parseISO8601(text, hasFraction);
        ASSERT_TRUE(read) << text;
        EXPECT_DOUBLE_EQ(unixSeconds(*read), unixTime) << text;
        EXPECT_FALSE(parseISO8601(text, !hasFraction)) << text;
    }
    for (const char* bad :
         {"2025-06-01 14:00:00Z", "2025-06-01T14:00:00", "2025-02-29T14:00:00Z",
          "2025-06-01T24:00:00Z", "2025-13-01T14:00:00Z", "25-06-01T14:00:00Z",
          "2025-06-01T14:00:00Zulu", "2025-06-01T14:00Z", "2025-06-01T14:00:00+2:00",
          " 2025-06-01T14:00:00Z", "2025-06-01T14:00:00.Z", "2025-06-0xT14:00:00Z", ""}) {
        EXPECT_FALSE(parseISO8601(bad, false)) << bad;
        EXPECT_FALSE(parseISO8601(bad, true)) << bad;
    }
    EXPECT_TRUE(parseISO8601("2025-06-01T14:00:00." + std::string(5000, '9') + "Z", true));
}

} // namespace vellmark
