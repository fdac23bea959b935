#include "presentation/SettingsPageContent.h"

#include "model/UsageTexts.h"
#include "presentation/AgentBlockContent.h"
#include "presentation/AppAppearance.h"
#include "presentation/LanguageManager.h"
#include "probes/ProviderRegistry.h"
#include "probes/VersionNumber.h"
#include "text/Formatting.h"
#include "text/TerminalText.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <ranges>
#include <set>

namespace vellmark {
namespace {

using SettingKind = SettingItem::Kind;
using Value = SettingsPageState::Value;

constexpr std::string_view figureKey = "StatusItemFigure";
constexpr std::string_view systemValue = "system";
constexpr std::string_view automaticValue = "automatic";

/// The preferences of the rows, section by section; the login item has none and comes first.
constexpr std::array<std::string_view, 5> generalKeys{LanguageManager::preferenceKey,
                                                      AppAppearance::preferenceKey, "FirstFigure",
                                                      "ReadingInterval", "LastWindow"};
constexpr std::array<std::string_view, 2> statusItemKeys{"StatusItemInk", figureKey};

constexpr std::array<std::string_view, 7> noticeKeys{
    "NoticeUsedUp", "NoticeRunsOut", "NoticeCritical", "NoticeBack",
    "NoticeReset",  "NoticeExpires", "NoticeUnread"};
constexpr std::string_view noticesKey = "Notices";
constexpr std::string_view quietHoursKey = "QuietHours";
constexpr std::array<std::string_view, 2> quietKeys{"QuietHoursFrom", "QuietHoursUntil"};
constexpr const char* onValue = "on";

const Value* find(const SettingsPageState& state, std::string_view preferenceKey) {
    const auto found = std::ranges::find_if(state.settings, [&](const Value& value) {
        return value.item.preferenceKey == preferenceKey;
    });
    return found == state.settings.end() ? nullptr : &*found;
}

const Value* find(const SettingsPageState& state, SettingKind kind,
                  const std::optional<AgentProviderID>& agent) {
    const auto found = std::ranges::find_if(state.settings, [&](const Value& value) {
        return value.item.kind == kind && value.item.agent == agent;
    });
    return found == state.settings.end() ? nullptr : &*found;
}

const AgentFacts* factsOf(const SettingsPageState& state, const AgentProviderID& id) {
    const auto found = std::ranges::find(state.agents, id, &AgentFacts::id);
    return found == state.agents.end() ? nullptr : &*found;
}

/// "Codex CLI 0.61.0"; what the program said of itself where that holds no number.
std::string versionText(const AgentFacts& facts, const std::string& program) {
    if (!facts.toolVersion) {
        return program;
    }
    const std::string line = singleLine(*facts.toolVersion);
    const std::optional<VersionNumber> number = VersionNumber::parse(line);
    return number ? program + " " + number->text() : line;
}

std::string sizeText(std::uintmax_t bytes, const Localization& words) {
    constexpr double kilo = 1000;
    const double kilobytes = static_cast<double>(bytes) / kilo;
    if (kilobytes < kilo) {
        return words.format("settings.size.kilobytes",
                            {integerText(std::llround(std::ceil(kilobytes)), words)});
    }
    if (kilobytes < kilo * kilo) {
        return words.format("settings.size.megabytes", {decimalText(kilobytes / kilo, words)});
    }
    return words.format("settings.size.gigabytes", {decimalText(kilobytes / kilo / kilo, words)});
}

/// What a setting does, where its name does not say it all.
std::string hintText(const SettingItem& item, const Localization& words) {
    const std::string key = item.wordsKey + ".hint";
    std::string text = words.text(key);
    return text == key ? std::string() : text;
}

// Agents

ControlContent wayOut(const ProviderDescriptor& agent, const AgentFacts& facts,
                      const Localization& words) {
    const auto hint = [&](const std::optional<std::string>& key) {
        return key ? words.text(*key) : std::string();
    };
    if (!agent.setup) {
        return {};
    }
    if (!facts.toolPath) {
        return {words.text("popover.failure.install"), {}, hint(agent.setup->missingHintKey)};
    }
    if (facts.loggedIn == false) {
        return {words.text("popover.failure.logIn"), {}, hint(agent.setup->loginHintKey)};
    }
    return {};
}

std::string_view loginKey(const AgentFacts& facts) {
    return !facts.loggedIn   ? "settings.agent.unverifiable"
           : *facts.loggedIn ? "settings.agent.loggedIn"
                             : "settings.agent.notLoggedIn";
}

AgentSettingContent agentContent(const ProviderDescriptor& agent, std::size_t place,
                                 const SettingsPageState& state, const Machine& machine,
                                 const Localization& words) {
    AgentSettingContent content{.id = agent.id, .name = agentShortName(agent.id, words)};
    content.isEnabled = state.enabled.contains(agent.id);
    content.switchName = words.format("settings.agent.switch", {content.name});
    content.handleName = words.format("settings.agent.move", {content.name});
    content.place =
        words.format("settings.agent.place", {static_cast<std::int64_t>(place + 1),
                                              static_cast<std::int64_t>(state.order.size())});
    const std::string program = words.text(agent.sourceKey);
    const AgentFacts* facts = factsOf(state, agent.id);
    if (facts == nullptr) {
        content.detail = words.text("settings.cli.checking");
        return content;
    }
    if (facts->toolPath) {
        content.detail = words.format(
            "settings.agent.detail",
            {versionText(*facts, program), singleLine(machine.abbreviated(*facts->toolPath))});
        content.status = words.text(loginKey(*facts));
    } else {
        content.detail = words.format("settings.agent.missing", {program});
    }
    if (content.isEnabled) {
        content.wayOut = wayOut(agent, *facts, words);
    }
    return content;
}

/// What is set of the readings of one agent.
SettingRowContent wayRow(const Value& setting, const std::string& agent,
                         const Localization& words) {
    const SettingItem& item = setting.item;
    SettingChoices choices{.current = setting.value, .form = SettingChoices::Form::popUp};
    if (item.kind == SettingKind::way) {
        for (const std::string& value : item.values) {
            choices.choices.push_back({value, words.text(item.wordsKey + "." + value)});
        }
    } else {
        choices.choices.push_back({std::string(automaticValue),
                                   words.text(item.wordsKey + "." + std::string(automaticValue))});
        std::set<int> minutes{15, 30, 60, 120, 240};
        // One that the terminal has set.
        if (setting.value != automaticValue) {
            minutes.insert(std::atoi(setting.value.c_str()));
        }
        for (const int span : minutes) {
            const std::string value = std::to_string(span);
            choices.choices.push_back({value, words.format(item.wordsKey + ".minutes", {value})});
        }
    }
    return {.name = item.name,
            .label = words.format(item.wordsKey, {agent}),
            .explanation = hintText(item, words),
            .control = std::move(choices)};
}

AgentProgramContent programContent(const ProviderDescriptor& agent, const SettingsPageState& state,
                                   const Machine& machine, const Localization& words) {
    AgentProgramContent content{.id = agent.id, .label = words.text(agent.sourceKey)};
    content.explanation = agent.cliHintKey ? words.text(*agent.cliHintKey) : std::string();
    const Value* setting = find(state, SettingKind::executable, agent.id);
    if (setting != nullptr && setting->value != automaticValue) {
        content.chosenPath = singleLine(machine.abbreviated(setting->value));
    }
    for (const Value& value : state.settings) {
        if (value.item.agent == agent.id &&
            (value.item.kind == SettingKind::way || value.item.kind == SettingKind::minutes)) {
            content.ways.push_back(wayRow(value, agentName(agent.id, words), words));
        }
    }
    const AgentFacts* facts = factsOf(state, agent.id);
    if (facts == nullptr) {
        return content;
    }
    if (facts->toolPath) {
        content.foundPath = singleLine(machine.abbreviated(*facts->toolPath));
    } else if (content.chosenPath.empty()) {
        content.foundPath = words.text("settings.program.notFound");
    } else if (!state.isChecking) {
        content.explanation = words.text("settings.program.unusable");
    }
    return content;
}

// Settings

std::string choiceTitle(const SettingItem& item, const std::string& value,
                        const SettingsPageState& state, const Localization& words) {
    if (item.preferenceKey == LanguageManager::preferenceKey && value == systemValue) {
        return words.format("settings.language.systemNamed",
                            {words.text(item.wordsKey + "." + state.systemLanguage)});
    }
    return words.text(item.wordsKey + "." + value);
}

/// Each half hour, and another time that the terminal has set.
SettingChoices timesOfDay(const std::string& current, const Localization& words) {
    constexpr int halfHour = 30;
    SettingChoices choices{.choices = {}, .current = current, .form = SettingChoices::Form::popUp};
    std::set<TimeOfDay> times;
    for (TimeOfDay time; time.minutes < 24 * 60; time.minutes += halfHour) {
        times.insert(time);
    }
    if (const auto time = TimeOfDay::parse(current)) {
        times.insert(*time);
    }
    for (const TimeOfDay& time : times) {
        choices.choices.push_back({time.text(), time.text(words)});
    }
    return choices;
}

SettingRowContent rowOf(const Value& setting, const SettingsPageState& state,
                        const Localization& words) {
    const SettingItem& item = setting.item;
    SettingRowContent row{.name = item.name,
                          .label = words.text(item.wordsKey),
                          .explanation = hintText(item, words)};
    if (item.kind == SettingKind::toggle) {
        row.control = SettingSwitch{.isOn = setting.value == onValue};
        return row;
    }
    if (item.kind == SettingKind::timeOfDay) {
        row.control = timesOfDay(setting.value, words);
        return row;
    }
    if (item.preferenceKey == figureKey) {
        row.control = SettingSwitch{.isOn = setting.value != item.values.front(),
                                    .onValue = item.values.back(),
                                    .offValue = item.values.front()};
        return row;
    }
    SettingChoices choices{.current = setting.value};
    choices.form = item.preferenceKey == LanguageManager::preferenceKey
                       ? SettingChoices::Form::popUp
                       : SettingChoices::Form::sideBySide;
    for (const std::string& value : item.values) {
        choices.choices.push_back({value, choiceTitle(item, value, state, words)});
    }
    row.control = std::move(choices);
    return row;
}

SettingRowContent loginRow(const Value& setting, const SettingsPageState& state,
                           const Localization& words) {
    using State = LaunchAtLoginController::State;
    SettingRowContent row{.name = setting.item.name, .label = words.text(setting.item.wordsKey)};
    const bool isAsked = state.launchAtLogin == State::needsApproval;
    if (isAsked) {
        row.explanation = words.text("settings.launchAtLogin.needsApproval");
        row.button = {words.text("settings.launchAtLogin.approve"),
                      {},
                      words.text("settings.launchAtLogin.approve.help")};
    } else if (state.launchAtLogin == State::unavailable) {
        row.explanation = words.text("settings.launchAtLogin.unavailable");
    }
    row.control = SettingSwitch{.isOn = isAsked || state.launchAtLogin == State::on,
                                .isEnabled = state.launchAtLogin != State::unavailable};
    return row;
}

template<std::size_t count>
void addRows(SettingsSectionContent& section, const std::array<std::string_view, count>& keys,
             const SettingsPageState& state, const Localization& words) {
    for (const std::string_view key : keys) {
        if (const Value* setting = find(state, key)) {
            section.rows.push_back(rowOf(*setting, state, words));
        }
    }
}

/// Whether notices come at all, and what to do where they cannot.
SettingRowContent noticesRow(const Value& setting, NoticeDelivery delivery,
                             const Localization& words) {
    SettingRowContent row = {.name = setting.item.name,
                             .label = words.text(setting.item.wordsKey),
                             .explanation = hintText(setting.item, words),
                             .control = SettingSwitch{.isOn = setting.value == onValue}};
    switch (delivery) {
    case NoticeDelivery::unserved:
        row.explanation = words.text("settings.notices.unserved");
        row.button = {words.text("settings.cli.recheck"), {}, ""};
        break;
    case NoticeDelivery::forbidden:
        row.explanation = words.text("settings.notices.forbidden");
        row.button = {words.text("settings.notices.allow"), {}, ""};
        break;
    case NoticeDelivery::unasked:
        row.explanation = words.text("settings.notices.unasked");
        break;
    case NoticeDelivery::notHere:
        row.explanation = words.text("settings.notices.notHere");
        break;
    case NoticeDelivery::unknown:
    case NoticeDelivery::works:
        break;
    }
    return row;
}

SettingsSectionContent noticeSection(const SettingsPageState& state, const Localization& words) {
    SettingsSectionContent section{.heading = words.text("settings.section.notices")};
    const Value* notices = find(state, noticesKey);
    const Value* quietHours = find(state, quietHoursKey);
    if (notices == nullptr || quietHours == nullptr) {
        return section;
    }
    section.rows.push_back(noticesRow(*notices, state.noticeDelivery, words));
    addRows(section, noticeKeys, state, words);
    section.rows.push_back(rowOf(*quietHours, state, words));
    if (quietHours->value == onValue) {
        addRows(section, quietKeys, state, words);
    }
    if (notices->value != onValue) {
        for (SettingRowContent& row : section.rows | std::views::drop(1)) {
            if (auto* control = std::get_if<SettingSwitch>(&row.control)) {
                control->isEnabled = false;
            }
        }
    }
    return section;
}

SettingRowContent buttonRow(std::string_view name, std::string_view key, ControlContent button,
                            std::string explanation, const Localization& words) {
    return {.name = std::string(name),
            .label = words.text(key),
            .explanation = std::move(explanation),
            .button = std::move(button)};
}

SettingsSectionContent dataSection(const SettingsPageState& state, const Localization& words) {
    SettingsSectionContent section{.heading = words.text("settings.section.data")};
    std::string place = state.dataFolder;
    if (state.dataSize) {
        place = words.format("settings.agent.detail", {place, sizeText(*state.dataSize, words)});
    }
    section.rows.push_back(buttonRow(settingsRow::dataFolder, "settings.dataFolder",
                                     {words.text("settings.dataFolder.show"), "folder", ""},
                                     std::move(place), words));
    ControlContent deletion;
    if (state.hasHistory) {
        deletion.title = words.text("settings.history.delete");
    }
    section.rows.push_back(buttonRow(
        settingsRow::history, "settings.history", std::move(deletion),
        words.text(state.hasHistory ? "settings.history.hint" : "settings.history.none"), words));
    section.rows.push_back(buttonRow(settingsRow::reset, "settings.reset",
                                     {words.text("settings.reset.button"), "", ""},
                                     words.text("settings.reset.hint"), words));
    return section;
}

SettingRowContent statusLineRow(const SettingsPageState::StatusLine& line,
                                const Localization& words) {
    return buttonRow(
        settingsRow::statusLine, "settings.statusLine",
        {words.text(line.isThere ? "settings.statusLine.remove" : "settings.statusLine.add"), "",
         ""},
        words.text(line.isThere ? "settings.statusLine.isThere" : "settings.statusLine.hint"),
        words);
}

/// On or off where that may be changed, else who has to.
SettingRowContent commandToolRow(const SettingsPageState::CommandTool& tool,
                                 const Localization& words) {
    using State = CommandLineTool::State;
    const std::string link = singleLine(tool.link.string());
    const std::string folder = singleLine(tool.link.parent_path().string());
    SettingRowContent row{.name = std::string(settingsRow::commandLineTool),
                          .label = words.text("settings.commandLineTool")};
    bool isOurs = true;
    switch (tool.state) {
    case State::off:
    case State::leftBehind:
        row.explanation = words.format("settings.commandLineTool.hint", {folder});
        break;
    case State::on:
        row.explanation = words.format("settings.commandLineTool.isThere", {folder});
        break;
    case State::kept:
        row.explanation = words.format("settings.commandLineTool.kept", {link});
        isOurs = false;
        break;
    case State::foreign:
        row.explanation = words.format("settings.commandLineTool.foreign", {link});
        isOurs = false;
        break;
    }
    const bool mayChange = isOurs && tool.command.empty();
    if (isOurs && !mayChange) {
        row.explanation +=
            "\n" + words.format("settings.commandLineTool.administrator", {tool.command});
        row.button = {words.text("help.copy"), {}, ""};
    }
    row.control = SettingSwitch{.isOn = tool.state == State::on || tool.state == State::kept,
                                .isEnabled = mayChange};
    return row;
}

QuestionContent question(const std::string& key, const Localization& words) {
    return {.title = words.text(key + ".title"),
            .text = words.text(key + ".text"),
            .deed = words.text(key + ".deed"),
            .cancel = words.text("settings.cancel")};
}

/// With the lines that go and come.
QuestionContent statusLineQuestion(const SettingsPageState::StatusLine& line,
                                   const Localization& words) {
    const std::string key =
        line.isThere ? "settings.statusLine.remove.question" : "settings.statusLine.add.question";
    QuestionContent content{.title = words.text(key + ".title"),
                            .text = words.format("settings.statusLine.question.text", {line.file}),
                            .deed = words.text(key + ".deed"),
                            .cancel = words.text("settings.cancel")};
    content.text += "\n";
    for (const ChangedLine& each : line.change) {
        if (each.kind != ChangedLine::Kind::same) {
            content.text += (each.kind == ChangedLine::Kind::added ? "\n+ " : "\n– ") +
                            std::string(trimmed(singleLine(each.text)));
        }
    }
    return content;
}

} // namespace

SettingsPageContent settingsPageContent(const SettingsPageState& state, const Machine& machine,
                                        const Localization& words) {
    SettingsPageContent content;
    content.head = pageHead({"nav.settings", "settings.subtitle"}, words);
    content.openSetup = {
        words.text("settings.openSetup"), {}, words.text("settings.openSetup.help")};
    content.trouble = state.trouble;
    content.agentsHeading = words.text("nav.section.agents");
    content.agentsHint = words.text("settings.agentOrder.help");
    content.isChecking = state.isChecking;
    content.checkAgain = {
        words.text(state.isChecking ? "settings.cli.checking" : "settings.cli.recheck"),
        "arrow.clockwise", ""};
    for (const AgentProviderID& id : state.order) {
        if (const ProviderDescriptor* agent = providerDescriptor(id)) {
            content.agents.push_back(
                agentContent(*agent, content.agents.size(), state, machine, words));
            content.programs.push_back(programContent(*agent, state, machine, words));
        }
    }
    SettingsSectionContent general{.heading = words.text("settings.section.general")};
    if (const Value* login = find(state, SettingKind::loginItem, std::nullopt)) {
        general.rows.push_back(loginRow(*login, state, words));
    }
    if (state.commandTool) {
        general.rows.push_back(commandToolRow(*state.commandTool, words));
    }
    addRows(general, generalKeys, state, words);
    SettingsSectionContent statusItem{.heading = words.text("settings.section.statusItem")};
    addRows(statusItem, statusItemKeys, state, words);
    if (state.statusLine) {
        statusItem.rows.push_back(statusLineRow(*state.statusLine, words));
        content.statusLineQuestion = statusLineQuestion(*state.statusLine, words);
    }
    content.firstSections = {std::move(general), std::move(statusItem),
                             noticeSection(state, words)};
    content.programsHeading = words.text("settings.section.programs");
    content.choosePath = {words.text("settings.program.choose"), "", ""};
    content.resetPath = {words.text("settings.program.reset"), "", ""};
    content.lastSections = {dataSection(state, words)};
    content.deleteQuestion = question("settings.history.question", words);
    content.resetQuestion = question("settings.reset.question", words);
    return content;
}

} // namespace vellmark
