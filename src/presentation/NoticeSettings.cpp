#include "presentation/NoticeSettings.h"

#include "store/AppSettings.h"
#include "text/Formatting.h"

#include <array>
#include <cstdio>
#include <utility>

namespace vellmark {
namespace {

constexpr int minutesInHour = 60;
constexpr int hoursInDay = 24;

const std::array kindSettings{
    std::pair{NoticeKind::critical, setting::noticeCritical},
    std::pair{NoticeKind::runsOut, setting::noticeRunsOut},
    std::pair{NoticeKind::usedUp, setting::noticeUsedUp},
    std::pair{NoticeKind::back, setting::noticeBack},
    std::pair{NoticeKind::reset, setting::noticeReset},
    std::pair{NoticeKind::expires, setting::noticeExpires},
    std::pair{NoticeKind::unread, setting::noticeUnread},
};

TimeOfDay timeOf(const Preferences& preferences, std::string_view key, std::string_view otherwise) {
    const auto stored = preferences.string(key);
    const auto time = stored ? TimeOfDay::parse(*stored) : std::nullopt;
    return time ? *time : *TimeOfDay::parse(otherwise);
}

} // namespace

std::optional<TimeOfDay> TimeOfDay::parse(std::string_view text) {
    if (text.size() != 5 || text[2] != ':') {
        return std::nullopt;
    }
    const auto number = [&](std::size_t at) {
        const int tens = text[at] - '0';
        const int ones = text[at + 1] - '0';
        const bool isNumber = tens >= 0 && tens <= 9 && ones >= 0 && ones <= 9;
        return isNumber ? tens * 10 + ones : hoursInDay * minutesInHour;
    };
    const int hours = number(0);
    const int rest = number(3);
    if (hours >= hoursInDay || rest >= minutesInHour) {
        return std::nullopt;
    }
    return TimeOfDay{hours * minutesInHour + rest};
}

std::string TimeOfDay::text() const {
    char form[16];
    std::snprintf(form, sizeof form, "%02d:%02d", minutes / minutesInHour, minutes % minutesInHour);
    return form;
}

std::string TimeOfDay::text(const Localization& words) const {
    // On a day without a change of the clocks.
    const CalendarDate date{.year = 2001, .month = 1, .day = 10, .minute = minutes};
    return timeText(words.timeZone().instant(date), words);
}

NoticeSettings NoticeSettings::of(const Preferences& preferences) {
    NoticeSettings settings;
    if (valueOf(preferences, setting::notices) == Switch::off) {
        return settings;
    }
    for (const auto& [kind, setting] : kindSettings) {
        if (valueOf(preferences, setting) == Switch::on) {
            settings.kinds.insert(kind);
        }
    }
    if (valueOf(preferences, setting::quietHours) == Switch::on) {
        settings.quietHours = QuietHours{
            .from = timeOf(preferences, setting::quietFromKey, setting::quietFromDefault),
            .until = timeOf(preferences, setting::quietUntilKey, setting::quietUntilDefault)};
    }
    return settings;
}

bool NoticeSettings::isQuiet(Instant now, const TimeZone& zone) const {
    if (!quietHours) {
        return false;
    }
    const CalendarDate date = zone.calendarDate(now);
    const TimeOfDay time{date.hour * minutesInHour + date.minute};
    const auto& [from, until] = *quietHours;
    return from <= until ? from <= time && time < until : time >= from || time < until;
}

} // namespace vellmark
