#include "presentation/SettingsCatalog.h"

#include "platform/SystemFacts.h"
#include "presentation/AppAppearance.h"
#include "presentation/LanguageManager.h"
#include "presentation/LaunchAtLoginController.h"
#include "presentation/NoticeSettings.h"
#include "probes/ExecutableLocator.h"
#include "probes/ProviderRegistry.h"
#include "store/AgentSettings.h"
#include "store/AppSettings.h"
#include "text/Capitalization.h"
#include "text/JoinedText.h"
#include "text/TerminalText.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace vellmark {
namespace {

using SettingKind = SettingItem::Kind;

constexpr const char* automatic = "automatic";
constexpr const char* none = "none";
constexpr const char* on = "on";
constexpr const char* off = "off";

template<typename Value, std::size_t count>
SettingItem choiceItem(std::string name, std::string wordsKey,
                       const ChoiceSetting<Value, count>& setting) {
    SettingItem item{.name = std::move(name),
                     .preferenceKey = std::string(setting.key),
                     .wordsKey = std::move(wordsKey)};
    for (const auto& [value, form] : setting.forms) {
        item.values.emplace_back(form);
    }
    return item;
}

SettingItem toggleItem(std::string name, std::string wordsKey,
                       const setting::SwitchSetting& toggle) {
    SettingItem item = choiceItem(std::move(name), std::move(wordsKey), toggle);
    item.kind = SettingKind::toggle;
    return item;
}

std::vector<SettingItem> noticeItems() {
    return {toggleItem("notices", "settings.notices", setting::notices),
            toggleItem("notice-used-up", "settings.noticeUsedUp", setting::noticeUsedUp),
            toggleItem("notice-runs-out", "settings.noticeRunsOut", setting::noticeRunsOut),
            toggleItem("notice-critical", "settings.noticeCritical", setting::noticeCritical),
            toggleItem("notice-back", "settings.noticeBack", setting::noticeBack),
            toggleItem("notice-reset", "settings.noticeReset", setting::noticeReset),
            toggleItem("notice-expires", "settings.noticeExpires", setting::noticeExpires),
            toggleItem("notice-unread", "settings.noticeUnread", setting::noticeUnread),
            toggleItem("quiet-hours", "settings.quietHours", setting::quietHours),
            {.name = "quiet-from",
             .kind = SettingKind::timeOfDay,
             .preferenceKey = std::string(setting::quietFromKey),
             .wordsKey = "settings.quietFrom",
             .values = {std::string(setting::quietFromDefault)}},
            {.name = "quiet-until",
             .kind = SettingKind::timeOfDay,
             .preferenceKey = std::string(setting::quietUntilKey),
             .wordsKey = "settings.quietUntil",
             .values = {std::string(setting::quietUntilDefault)}}};
}

std::vector<SettingItem> agentItems(const ProviderDescriptor& agent) {
    const std::string& id = agent.id.rawValue;
    std::vector<SettingItem> items{{.name = id + "-path",
                                    .kind = SettingKind::executable,
                                    .preferenceKey = AgentSettings::executableKey(agent.id),
                                    .wordsKey = "settings.executable",
                                    .agent = agent.id}};
    if (agent.readingWays.size() > 1) {
        SettingItem way{.name = id + "-way",
                        .kind = SettingKind::way,
                        .preferenceKey = AgentSettings::wayKey(agent.id),
                        .wordsKey = "settings.way",
                        .values = {automatic},
                        .agent = agent.id};
        way.values.insert(way.values.end(), agent.readingWays.begin(), agent.readingWays.end());
        items.push_back(std::move(way));
        items.push_back({.name = id + "-interval",
                         .kind = SettingKind::minutes,
                         .preferenceKey = AgentSettings::intervalKey(agent.id),
                         .wordsKey = "settings.agentInterval",
                         .agent = agent.id});
    }
    return items;
}

std::vector<SettingItem> allItems() {
    std::vector<SettingItem> items{
        {.name = "agents",
         .kind = SettingKind::agents,
         .preferenceKey = std::string(AgentSettings::disabledKey),
         .wordsKey = "settings.agents"},
        {.name = "agent-order",
         .kind = SettingKind::order,
         .preferenceKey = std::string(AgentSettings::orderKey),
         .wordsKey = "settings.agentOrder"},
        {.name = "launch-at-login",
         .kind = SettingKind::loginItem,
         .wordsKey = "settings.launchAtLogin"},
        {.name = "language",
         .preferenceKey = std::string(LanguageManager::preferenceKey),
         .wordsKey = "settings.language",
         .values = LanguageManager::settings()},
        {.name = "appearance",
         .preferenceKey = std::string(AppAppearance::preferenceKey),
         .wordsKey = "settings.appearance",
         .values = {"system", "light", "dark"}},
        choiceItem("first-figure", "settings.firstFigure", setting::firstFigure),
        choiceItem("interval", "settings.interval", setting::readingInterval),
        choiceItem("status-ink", "settings.statusInk", setting::statusInk),
        choiceItem("status-figure", "settings.statusFigure", setting::statusFigure),
        choiceItem("last-window", "settings.lastWindow", setting::lastWindow)};
    std::ranges::move(noticeItems(), std::back_inserter(items));
    for (const ProviderRegistration& registration : providerRegistry()) {
        std::ranges::move(agentItems(registration.descriptor), std::back_inserter(items));
    }
    return items;
}

std::vector<std::string> registeredNames() {
    std::vector<std::string> names;
    for (const ProviderRegistration& registration : providerRegistry()) {
        names.push_back(registration.descriptor.id.rawValue);
    }
    return names;
}

/// The identifiers in `text`, separated by commas or blanks; absent when one is unknown or
/// repeated.
std::optional<std::vector<AgentProviderID>> agentsIn(const std::string& text) {
    std::vector<AgentProviderID> agents;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find_first_of(", ", at), text.size());
        if (end > at) {
            AgentProviderID id(text.substr(at, end - at));
            if (providerDescriptor(id) == nullptr || std::ranges::count(agents, id) > 0) {
                return std::nullopt;
            }
            agents.push_back(std::move(id));
        }
        at = end + 1;
    }
    return agents;
}

} // namespace

SettingsCatalog::SettingsCatalog(Preferences& preferences, const Machine& machine,
                                 LaunchAtLoginController& launchAtLogin)
    : preferences_(preferences), machine_(machine), launchAtLogin_(launchAtLogin),
      items_(allItems()) {}

const SettingItem* SettingsCatalog::find(std::string_view name) const {
    const auto found = std::ranges::find(items_, name, &SettingItem::name);
    return found == items_.end() ? nullptr : &*found;
}

std::string SettingsCatalog::value(const SettingItem& item) const {
    const AgentSettings agents(preferences_, providerRegistry());
    std::vector<std::string> names;
    switch (item.kind) {
    case SettingKind::choice:
    case SettingKind::toggle:
    case SettingKind::way:
        if (const auto stored = preferences_.string(item.preferenceKey);
            stored && std::ranges::find(item.values, *stored) != item.values.end()) {
            return *stored;
        }
        break;
    case SettingKind::timeOfDay:
        if (const auto stored = preferences_.string(item.preferenceKey);
            stored && TimeOfDay::parse(*stored)) {
            return *stored;
        }
        break;
    case SettingKind::loginItem:
        return launchAtLogin_.state() == LaunchAtLoginController::State::on ? on : off;
    case SettingKind::order:
        for (const AgentProviderID& id : agents.order()) {
            names.push_back(id.rawValue);
        }
        return joined(names, ",");
    case SettingKind::agents:
        for (const AgentProviderID& id : agents.order()) {
            if (agents.enabled().contains(id)) {
                names.push_back(id.rawValue);
            }
        }
        return names.empty() ? none : joined(names, ",");
    case SettingKind::executable:
        if (const auto path = agents.chosenExecutable(*item.agent)) {
            return path->string();
        }
        break;
    case SettingKind::minutes:
        if (const auto interval =
                agents.readingOptions(*providerDescriptor(*item.agent)).interval) {
            return std::to_string(std::lround(interval->count() / 60));
        }
        break;
    }
    return defaultValue(item);
}

std::string SettingsCatalog::defaultValue(const SettingItem& item) const {
    switch (item.kind) {
    case SettingKind::choice:
    case SettingKind::toggle:
    case SettingKind::timeOfDay:
    case SettingKind::way:
        return item.values.front();
    case SettingKind::loginItem:
        return on;
    case SettingKind::order:
    case SettingKind::agents:
        return joined(registeredNames(), ",");
    case SettingKind::executable:
    case SettingKind::minutes:
        break;
    }
    return automatic;
}

std::string SettingsCatalog::allowedText(const SettingItem& item) const {
    switch (item.kind) {
    case SettingKind::choice:
    case SettingKind::way:
        return joined(item.values, ", ");
    case SettingKind::timeOfDay:
        return "00:00-23:59";
    case SettingKind::toggle:
    case SettingKind::loginItem:
        return std::string(on) + ", " + off;
    case SettingKind::order:
        return joined(registeredNames(), ", ");
    case SettingKind::agents:
        return joined(registeredNames(), ", ") + ", " + none;
    case SettingKind::executable:
        return std::string("PATH, ") + automatic;
    case SettingKind::minutes:
        break;
    }
    std::string range = std::to_string(leastMinutes);
    return range.append("-").append(std::to_string(mostMinutes)).append(", ").append(automatic);
}

std::string SettingsCatalog::title(const SettingItem& item, const Localization& words) const {
    return item.agent
               ? words.format(item.wordsKey, {words.text(providerDescriptor(*item.agent)->nameKey)})
               : words.text(item.wordsKey);
}

std::string SettingsCatalog::valueText(const SettingItem& item, const Localization& words) const {
    const std::string value = this->value(item);
    switch (item.kind) {
    case SettingKind::choice:
    case SettingKind::way:
        return words.text(item.wordsKey + "." + value);
    case SettingKind::toggle:
        return words.text("settings.switch." + value);
    case SettingKind::timeOfDay:
        return TimeOfDay::parse(value)->text(words);
    case SettingKind::loginItem:
        switch (launchAtLogin_.state()) {
        case LaunchAtLoginController::State::unavailable:
            return words.text("settings.launchAtLogin.unavailable");
        case LaunchAtLoginController::State::needsApproval:
            return words.text("settings.launchAtLogin.needsApproval");
        default:
            return words.text(item.wordsKey + "." + value);
        }
    case SettingKind::order:
    case SettingKind::agents: {
        if (value == none) {
            return words.text("settings.agents.none");
        }
        const auto agents = agentsIn(value);
        std::vector<std::string> names;
        for (const AgentProviderID& id : *agents) {
            names.push_back(words.text(providerDescriptor(id)->nameKey));
        }
        return joined(names, ", ");
    }
    case SettingKind::executable:
        if (value == automatic) {
            const auto found = providerDescriptor(*item.agent)->executableLocator(machine_);
            return found ? words.format("settings.executable.found",
                                        {singleLine(machine_.abbreviated(*found))})
                         : words.text("settings.executable.notFound");
        }
        return isExecutableFile(value) ? singleLine(machine_.abbreviated(value))
                                       : words.format("settings.executable.unusable",
                                                      {singleLine(machine_.abbreviated(value))});
    case SettingKind::minutes:
        break;
    }
    return value == automatic ? words.text("settings.agentInterval.automatic")
                              : words.format("settings.agentInterval.minutes", {value});
}

// --- changing

SettingRefusal SettingsCatalog::notAllowed(const SettingItem& item, const std::string& text) const {
    return {"settings.refused.value", singleLine(text), allowedText(item)};
}

std::optional<SettingRefusal> SettingsCatalog::set(const SettingItem& item,
                                                   const std::string& text) {
    switch (item.kind) {
    case SettingKind::choice:
    case SettingKind::toggle:
    case SettingKind::way:
        if (std::ranges::find(item.values, text) == item.values.end()) {
            return notAllowed(item, text);
        }
        if (item.kind == SettingKind::way && text == automatic) {
            reset(item);
        } else {
            preferences_.setString(item.preferenceKey, text);
        }
        return std::nullopt;
    case SettingKind::timeOfDay:
        return setTimeOfDay(item, text);
    case SettingKind::loginItem:
        return setLoginItem(item, text);
    case SettingKind::order:
    case SettingKind::agents:
        return setAgents(item, text);
    case SettingKind::executable:
        return setExecutable(item, text);
    case SettingKind::minutes:
        break;
    }
    return setMinutes(item, text);
}

std::optional<SettingRefusal> SettingsCatalog::setLoginItem(const SettingItem& item,
                                                            const std::string& text) {
    if (text != on && text != off) {
        return notAllowed(item, text);
    }
    if (!launchAtLogin_.canManage()) {
        return SettingRefusal{"settings.refused.loginItem", item.name, {}};
    }
    if (const std::string reason = launchAtLogin_.setEnabled(text == on); !reason.empty()) {
        return SettingRefusal{"settings.refused.system", item.name, singleLine(reason)};
    }
    return std::nullopt;
}

std::optional<SettingRefusal> SettingsCatalog::setAgents(const SettingItem& item,
                                                         const std::string& text) {
    const auto named = item.kind == SettingKind::agents && text == none
                           ? std::vector<AgentProviderID>()
                           : agentsIn(text);
    if (!named || (named->empty() && text != none)) {
        return notAllowed(item, text);
    }
    AgentSettings agents(preferences_, providerRegistry());
    if (item.kind == SettingKind::order) {
        agents.setOrder(agents.completed(*named));
        return std::nullopt;
    }
    for (const AgentProviderID& id : agents.order()) {
        agents.setEnabled(id, std::ranges::find(*named, id) != named->end());
    }
    return std::nullopt;
}

std::optional<SettingRefusal> SettingsCatalog::setExecutable(const SettingItem& item,
                                                             const std::string& text) {
    AgentSettings agents(preferences_, providerRegistry());
    if (text == automatic) {
        agents.chooseExecutable(*item.agent, std::nullopt);
        return std::nullopt;
    }
    // As it is typed: "~" may come from a program's dialog or a quoted argument.
    const std::filesystem::path path =
        text.starts_with("~/") ? machine_.resolved(text) : std::filesystem::path(text);
    if (!path.is_absolute()) {
        return SettingRefusal{"settings.refused.relative", singleLine(text), {}};
    }
    if (!isExecutableFile(path)) {
        return SettingRefusal{"settings.refused.notExecutable", singleLine(text), {}};
    }
    agents.chooseExecutable(*item.agent, path.lexically_normal());
    return std::nullopt;
}

std::optional<SettingRefusal> SettingsCatalog::setTimeOfDay(const SettingItem& item,
                                                            const std::string& text) {
    // "7:30" is meant as well.
    const auto time = TimeOfDay::parse(text.size() == 4 ? "0" + text : text);
    if (!time) {
        return notAllowed(item, text);
    }
    preferences_.setString(item.preferenceKey, time->text());
    return std::nullopt;
}

std::optional<SettingRefusal> SettingsCatalog::setMinutes(const SettingItem& item,
                                                          const std::string& text) {
    if (text == automatic) {
        reset(item);
        return std::nullopt;
    }
    int minutes = 0;
    const char* const end = text.data() + text.size();
    const auto [parsed, error] = std::from_chars(text.data(), end, minutes);
    if (error != std::errc() || parsed != end || minutes < leastMinutes || minutes > mostMinutes) {
        return notAllowed(item, text);
    }
    preferences_.setNumber(item.preferenceKey, minutes);
    return std::nullopt;
}

std::optional<SettingRefusal> SettingsCatalog::reset(const SettingItem& item) {
    if (item.kind == SettingKind::loginItem) {
        return setLoginItem(item, on);
    }
    preferences_.remove(item.preferenceKey);
    return std::nullopt;
}

void SettingsCatalog::resetAll() {
    for (const SettingItem& item : items_) {
        if (item.kind != SettingKind::loginItem) {
            reset(item);
        }
    }
}

} // namespace vellmark
