#pragma once

#include "presentation/MenuBarGlyph.h"
#include "presentation/PageHeadContent.h"
#include "presentation/StatusColor.h"
#include "presentation/UsageRowContent.h"

#include <string>
#include <variant>
#include <vector>

namespace vellmark {

/// The parts of the help, in the order in which they are offered.
enum class HelpSection { reading, marks, failures, keyboard, support };

/// A mark of the program as it is drawn where the user meets it.
struct HelpIcon {
    /// A symbol's name.
    std::string name;
    StatusColorRole color = StatusColorRole::none;
    bool operator==(const HelpIcon&) const = default;
};
/// Nothing, a dot, a bar, a glyph, or an icon.
using HelpMark =
    std::variant<std::monostate, StatusColorRole, UsageBarContent, MenuBarGlyph, HelpIcon>;

/// Where a help entry may lead.
enum class HelpLink { none, supportReport, supportPage, terms, privacy };

struct HelpButton {
    std::string title;
    HelpLink link = HelpLink::none;
    bool operator==(const HelpButton&) const = default;
};

struct HelpEntry {
    HelpMark mark;
    std::string title;
    std::string text;
    /// To be typed into a terminal; each can be copied.
    std::vector<std::string> commands;
    /// "Strg+R"; instead of a text.
    std::vector<std::string> keys;
    std::vector<HelpButton> buttons;
    bool operator==(const HelpEntry&) const = default;
};

struct HelpGroup {
    /// May be empty.
    std::string title;
    std::vector<HelpEntry> entries;
    bool operator==(const HelpGroup&) const = default;
};

struct HelpPageContent {
    PageHeadContent head;
    /// In the order of HelpSection.
    std::vector<std::string> sections;
    HelpSection section = HelpSection::reading;
    std::string query;
    /// What the empty field for the query says.
    std::string searchHint;
    /// Of the section, or of all that hold the query's words.
    std::vector<HelpGroup> groups;
    /// That nothing holds them; else empty.
    std::string nothingFound;
    /// The name of the buttons that copy a command.
    std::string copyTitle;
    bool operator==(const HelpPageContent&) const = default;
};

/// `query` goes before `section`: what is looked for is looked for everywhere.
HelpPageContent helpPageContent(HelpSection section, const std::string& query,
                                const Localization& words);

/// Every failure that the program knows, each with its cure.
std::vector<HelpGroup> helpFailures(const Localization& words);

} // namespace vellmark
