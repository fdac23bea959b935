#pragma once

#include "platform/Preferences.h"
#include "store/FirstFigure.h"
#include "text/Instant.h"

#include <array>
#include <string_view>
#include <utility>

namespace vellmark {

/// Which ink the glyph in the menu bar or panel has: the one for its ground as far as that is
/// known, or always the same.
enum class StatusInk { automatic, light, dark };
/// What stands beside the glyph: nothing, or what is left of the quota of which least is left.
enum class StatusFigure { none, leastLeft };
/// What happens when the last window is closed.
enum class LastWindow { keepsRunning, quits };
/// How often all agents are read.
enum class ReadingInterval { fiveMinutes, tenMinutes, thirtyMinutes };

/// Whether something is done.
enum class Switch { on, off };

/// A setting that is one of a few values: the preference that keeps it and what each value is
/// called there and in the terminal. The first one holds where none is kept, or none that is known.
template<typename Value, std::size_t count>
struct ChoiceSetting {
    std::string_view key;
    std::array<std::pair<Value, std::string_view>, count> forms;
};

namespace setting {

inline constexpr ChoiceSetting<FirstFigure, 2> firstFigure{
    "FirstFigure", {{{FirstFigure::left, "left"}, {FirstFigure::used, "used"}}}};
inline constexpr ChoiceSetting<ReadingInterval, 3> readingInterval{
    "ReadingInterval",
    {{{ReadingInterval::fiveMinutes, "5"},
      {ReadingInterval::tenMinutes, "10"},
      {ReadingInterval::thirtyMinutes, "30"}}}};
inline constexpr ChoiceSetting<StatusInk, 3> statusInk{"StatusItemInk",
                                                       {{{StatusInk::automatic, "automatic"},
                                                         {StatusInk::light, "light"},
                                                         {StatusInk::dark, "dark"}}}};
inline constexpr ChoiceSetting<StatusFigure, 2> statusFigure{
    "StatusItemFigure", {{{StatusFigure::none, "none"}, {StatusFigure::leastLeft, "least-left"}}}};
inline constexpr ChoiceSetting<LastWindow, 2> lastWindow{
    "LastWindow", {{{LastWindow::keepsRunning, "keep-running"}, {LastWindow::quits, "quit"}}}};

using SwitchSetting = ChoiceSetting<Switch, 2>;
constexpr SwitchSetting onUnlessOff(std::string_view key) {
    return {key, {{{Switch::on, "on"}, {Switch::off, "off"}}}};
}
constexpr SwitchSetting offUnlessOn(std::string_view key) {
    return {key, {{{Switch::off, "off"}, {Switch::on, "on"}}}};
}

/// Whether the desktop program tells anything by itself, and of what.
inline constexpr SwitchSetting notices = onUnlessOff("Notices");
inline constexpr SwitchSetting noticeCritical = onUnlessOff("NoticeCritical");
inline constexpr SwitchSetting noticeRunsOut = onUnlessOff("NoticeRunsOut");
inline constexpr SwitchSetting noticeUsedUp = onUnlessOff("NoticeUsedUp");
inline constexpr SwitchSetting noticeBack = onUnlessOff("NoticeBack");
inline constexpr SwitchSetting noticeReset = offUnlessOn("NoticeReset");
inline constexpr SwitchSetting noticeExpires = onUnlessOff("NoticeExpires");
inline constexpr SwitchSetting noticeUnread = onUnlessOff("NoticeUnread");
/// A time of the day in which nothing is told, from one minute of the day to another.
inline constexpr SwitchSetting quietHours = offUnlessOn("QuietHours");
inline constexpr std::string_view quietFromKey = "QuietHoursFrom";
inline constexpr std::string_view quietUntilKey = "QuietHoursUntil";
inline constexpr std::string_view quietFromDefault = "22:00";
inline constexpr std::string_view quietUntilDefault = "07:00";

} // namespace setting

template<typename Value, std::size_t count>
Value valueOf(const Preferences& preferences, const ChoiceSetting<Value, count>& setting) {
    const auto stored = preferences.string(setting.key);
    for (const auto& [value, form] : setting.forms) {
        if (stored == form) {
            return value;
        }
    }
    return setting.forms.front().first;
}

template<typename Value, std::size_t count>
void choose(Preferences& preferences, const ChoiceSetting<Value, count>& setting, Value chosen) {
    for (const auto& [value, form] : setting.forms) {
        if (value == chosen) {
            preferences.setString(setting.key, std::string(form));
        }
    }
}

constexpr Seconds length(ReadingInterval interval) {
    switch (interval) {
    case ReadingInterval::fiveMinutes:
        break;
    case ReadingInterval::tenMinutes:
        return Seconds(600);
    case ReadingInterval::thirtyMinutes:
        return Seconds(1800);
    }
    return Seconds(300);
}

} // namespace vellmark
