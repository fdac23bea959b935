#include "presentation/HelpPageContent.h"

#include "presentation/MainMenuContent.h"
#include "presentation/ShortcutText.h"
#include "text/Capitalization.h"
#include "text/SearchWords.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string_view>
#include <utility>

namespace vellmark {
namespace {

constexpr std::array sectionKeys{
    std::pair{HelpSection::reading, std::string_view("help.section.reading")},
    std::pair{HelpSection::marks, std::string_view("help.section.marks")},
    std::pair{HelpSection::failures, std::string_view("help.section.failures")},
    std::pair{HelpSection::keyboard, std::string_view("help.section.keyboard")},
    std::pair{HelpSection::support, std::string_view("help.section.support")},
};

HelpEntry entry(std::string title, std::string text, HelpMark mark = {}) {
    return {.mark = std::move(mark),
            .title = std::move(title),
            .text = std::move(text),
            .commands = {},
            .keys = {},
            .buttons = {}};
}

std::vector<HelpGroup> reading(const Localization& words) {
    HelpGroup group;
    for (const char* topic : {"how", "when", "cost", "stale", "forecast", "never"}) {
        const std::string key = std::string("help.reading.") + topic;
        group.entries.push_back(entry(words.text(key + ".title"), words.text(key)));
    }
    return {group};
}

// What the marks are of: one quota in different states.

UsageBarContent bar(double left, std::optional<double> mark, UsageHealth health) {
    return {.filledShare = left,
            .usedShare = 1 - left,
            .paceMark = mark,
            .health = health,
            .isStale = false,
            .toolTip = {}};
}

HelpGroup dots(const Localization& words) {
    using Role = StatusColorRole;
    return {
        .title = words.text("help.marks.dots"),
        .entries = {
            entry(words.text("health.healthy"), words.text("help.marks.healthy"), Role::healthy),
            entry(words.text("health.attention"), words.text("help.marks.attention"),
                  Role::attention),
            entry(words.text("health.critical"), words.text("help.marks.critical"), Role::critical),
            entry(words.text("health.unavailable"), words.text("help.marks.none"), Role::none),
            entry(words.text("help.marks.refreshing.title"), words.text("help.marks.refreshing"),
                  Role::refreshing),
        }};
}

HelpGroup bars(const Localization& words) {
    const auto explained = [&](const char* name, UsageBarContent content) {
        const std::string key = std::string("help.marks.bar.") + name;
        return entry(words.text(key + ".title"), words.text(key), std::move(content));
    };
    UsageBarContent stale = bar(0.72, 0.55, UsageHealth::healthy);
    stale.isStale = true;
    return {.title = words.text("help.marks.bars"),
            .entries = {
                explained("lasts", bar(0.72, 0.55, UsageHealth::healthy)),
                explained("short", bar(0.34, 0.46, UsageHealth::attention)),
                explained("stale", stale),
                explained("unknown", bar(0.72, std::nullopt, UsageHealth::healthy)),
            }};
}

HelpGroup signs(const Localization& words) {
    return {.title = words.text("help.marks.signs"),
            .entries = {
                entry(words.text("help.marks.warning.title"), words.text("help.marks.warning"),
                      HelpIcon{"exclamationmark.triangle.fill", StatusColorRole::attention}),
                entry(words.text("help.marks.clock.title"), words.text("help.marks.clock"),
                      HelpIcon{"clock", StatusColorRole::none}),
            }};
}

HelpGroup glyphs(const Localization& words) {
    const auto explained = [&](const char* name, MenuBarGlyph glyph) {
        const std::string key = std::string("help.marks.glyph.") + name;
        return entry(words.text(key + ".title"), words.text(key), std::move(glyph));
    };
    return {
        .title = words.text("help.marks.glyph"),
        .entries = {
            explained("normal",
                      {.usedPercent = 38, .elapsedPercent = 71, .providerID = {}, .windowID = {}}),
            explained("usedUp",
                      {.usedPercent = 100, .elapsedPercent = 60, .providerID = {}, .windowID = {}}),
            explained("unknown", {}),
        }};
}

// The keyboard

HelpEntry keyEntry(std::string title, std::vector<std::string> keys) {
    HelpEntry result = entry(std::move(title), {});
    result.keys = std::move(keys);
    return result;
}

/// The keys of the menus, whatever these hold.
HelpGroup menuKeys(const Localization& words) {
    HelpGroup group{.title = words.text("help.keys.menus"), .entries = {}};
    for (const MenuContent& menu : mainMenuContent(words)) {
        for (const MenuItemContent& item : menu.items) {
            if (item.key != 0) {
                const Shortcut shortcut{Shortcut::Held::command,
                                        capitalized(std::string(1, item.key))};
                group.entries.push_back(keyEntry(item.title, {shortcutText(shortcut, words)}));
            }
        }
    }
    if (commandKey() == CommandKey::control) {
        group.entries.push_back(keyEntry(words.text("help.keys.menu"), {"F10"}));
    }
    return group;
}

HelpGroup windowKeys(const Localization& words) {
    using Held = Shortcut::Held;
    const auto held = [&](Held modifier, const char* key) {
        return shortcutText({modifier, key}, words);
    };
    return {.title = words.text("help.keys.window"),
            .entries = {
                keyEntry(words.text("help.keys.refresh"), {held(Held::command, "R")}),
                keyEntry(words.text("help.keys.pages"), {held(Held::command, "1–9")}),
                keyEntry(words.text("help.keys.back"), {held(Held::alt, "←")}),
                keyEntry(words.text("help.keys.forward"), {held(Held::alt, "→")}),
                keyEntry(words.text("help.keys.sides"), {"F6"}),
                keyEntry(words.text("help.keys.search"), {held(Held::command, "F")}),
                keyEntry(words.text("help.keys.next"), {words.text("key.tab")}),
                keyEntry(words.text("help.keys.press"), {words.text("key.return")}),
            }};
}

HelpGroup popoverKeys(const Localization& words) {
    using Held = Shortcut::Held;
    return {
        .title = words.text("help.keys.popover"),
        .entries = {
            keyEntry(words.text("help.keys.tabs"), {shortcutText({Held::command, "1–9"}, words)}),
            keyEntry(words.text("help.keys.nextTab"), {"←", "→"}),
            keyEntry(words.text("help.keys.refresh"), {shortcutText({Held::command, "R"}, words)}),
            keyEntry(words.text("help.keys.close"), {words.text("key.escape")}),
        }};
}

std::vector<HelpGroup> support(const Localization& words) {
    const auto topic = [&](const char* name, std::vector<HelpButton> buttons) {
        const std::string key = std::string("help.support.") + name;
        HelpEntry result = entry(words.text(key + ".title"), words.text(key));
        result.buttons = std::move(buttons);
        return result;
    };
    HelpEntry report = topic("report", {{words.text("menu.help.report"), HelpLink::supportReport}});
    report.commands = {"vellmark report -o vellmark-report.txt"};
    HelpGroup group;
    group.entries = {
        std::move(report),
        topic("page", {{words.text("help.support.openPage"), HelpLink::supportPage}}),
        topic("legal", {{words.text("legal.terms"), HelpLink::terms},
                        {words.text("legal.privacy"), HelpLink::privacy}}),
    };
    return {group};
}

std::vector<HelpGroup> groupsOf(HelpSection section, const Localization& words) {
    switch (section) {
    case HelpSection::reading:
        return reading(words);
    case HelpSection::marks:
        return {dots(words), bars(words), signs(words), glyphs(words)};
    case HelpSection::failures:
        return helpFailures(words);
    case HelpSection::keyboard:
        return {menuKeys(words), windowKeys(words), popoverKeys(words)};
    case HelpSection::support:
        return support(words);
    }
    return {};
}

std::string searchableText(const HelpGroup& group, const HelpEntry& entry) {
    std::string text = group.title + " " + entry.title + " " + entry.text;
    for (const auto* more : {&entry.commands, &entry.keys}) {
        for (const std::string& line : *more) {
            text += " " + line;
        }
    }
    for (const HelpButton& button : entry.buttons) {
        text += " " + button.title;
    }
    return text;
}

/// The entries of all sections that hold the words, under "section · group".
std::vector<HelpGroup> found(const SearchWords& wanted, const Localization& words) {
    std::vector<HelpGroup> result;
    for (const auto& [section, titleKey] : sectionKeys) {
        for (HelpGroup& group : groupsOf(section, words)) {
            std::erase_if(group.entries, [&](const HelpEntry& entry) {
                return !wanted.areIn(searchableText(group, entry));
            });
            if (group.entries.empty()) {
                continue;
            }
            const std::string title = words.text(titleKey);
            group.title =
                group.title.empty() ? title : words.format("help.inSection", {title, group.title});
            result.push_back(std::move(group));
        }
    }
    return result;
}

} // namespace

HelpPageContent helpPageContent(HelpSection section, const std::string& query,
                                const Localization& words) {
    HelpPageContent content;
    content.head = pageHead({"nav.help", "help.subtitle"}, words);
    for (const auto& [each, titleKey] : sectionKeys) {
        content.sections.push_back(words.text(titleKey));
    }
    content.section = section;
    content.query = query;
    content.searchHint = words.text("help.search");
    content.copyTitle = words.text("help.copy");
    const SearchWords wanted(query);
    content.groups = wanted.empty() ? groupsOf(section, words) : found(wanted, words);
    if (content.groups.empty()) {
        content.nothingFound = words.format("help.nothingFound", {query});
    }
    return content;
}

} // namespace vellmark
