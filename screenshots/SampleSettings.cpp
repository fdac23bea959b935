#include "screenshots/SampleSettings.h"

#include <utility>

namespace vellmark::samples {

namespace {

using Kind = SettingItem::Kind;
using Value = SettingsPageState::Value;

Value choice(std::string name, std::string preferenceKey, std::string wordsKey,
             std::vector<std::string> values) {
    Value value{{.name = std::move(name),
                 .preferenceKey = std::move(preferenceKey),
                 .wordsKey = std::move(wordsKey)},
                {}};
    value.value = values.front();
    value.item.values = std::move(values);
    return value;
}

Value toggle(std::string name, std::string preferenceKey, std::string wordsKey, bool isOn = true) {
    Value value = choice(std::move(name), std::move(preferenceKey), std::move(wordsKey),
                         {isOn ? "on" : "off", isOn ? "off" : "on"});
    value.item.kind = Kind::toggle;
    return value;
}

Value time(std::string name, std::string preferenceKey, std::string wordsKey, std::string value) {
    Value result =
        choice(std::move(name), std::move(preferenceKey), std::move(wordsKey), {std::move(value)});
    result.item.kind = Kind::timeOfDay;
    return result;
}

Value program(const AgentProviderID& id, std::string path) {
    return {{.name = id.rawValue + "-path",
             .kind = Kind::executable,
             .preferenceKey = {},
             .wordsKey = "settings.executable",
             .values = {},
             .agent = id},
            std::move(path)};
}

Value readingWay() {
    return {{.name = "claude-way",
             .kind = Kind::way,
             .preferenceKey = {},
             .wordsKey = "settings.way",
             .values = {"automatic", "query", "session"},
             .agent = AgentProviderID::claude()},
            "automatic"};
}

AgentFacts facts(const AgentProviderID& id, const char* path, const char* version) {
    return {id, path, version, true};
}

Value& valueOf(SettingsPageState& state, std::string_view name) {
    for (Value& value : state.settings) {
        if (value.item.name == name) {
            return value;
        }
    }
    return state.settings.front();
}

} // namespace

Machine machine() {
    Machine machine;
    machine.home = "/home/robin";
    return machine;
}

SettingsPageState settings() {
    SettingsPageState state;
    state.settings = {
        {{.name = "launch-at-login",
          .kind = Kind::loginItem,
          .preferenceKey = {},
          .wordsKey = "settings.launchAtLogin"},
         "on"},
        choice("language", "AppLanguage", "settings.language",
               {"system", "de", "en", "fr", "it", "es"}),
        choice("appearance", "AppAppearance", "settings.appearance", {"system", "light", "dark"}),
        choice("first-figure", "FirstFigure", "settings.firstFigure", {"left", "used"}),
        choice("interval", "ReadingInterval", "settings.interval", {"5", "10", "30"}),
        choice("last-window", "LastWindow", "settings.lastWindow", {"keep-running", "quit"}),
        choice("status-ink", "StatusItemInk", "settings.statusInk", {"automatic", "light", "dark"}),
        choice("status-figure", "StatusItemFigure", "settings.statusFigure",
               {"none", "least-left"}),
        toggle("notices", "Notices", "settings.notices"),
        toggle("notice-used-up", "NoticeUsedUp", "settings.noticeUsedUp"),
        toggle("notice-runs-out", "NoticeRunsOut", "settings.noticeRunsOut"),
        toggle("notice-critical", "NoticeCritical", "settings.noticeCritical"),
        toggle("notice-back", "NoticeBack", "settings.noticeBack"),
        toggle("notice-reset", "NoticeReset", "settings.noticeReset", false),
        toggle("notice-expires", "NoticeExpires", "settings.noticeExpires"),
        toggle("notice-unread", "NoticeUnread", "settings.noticeUnread"),
        toggle("quiet-hours", "QuietHours", "settings.quietHours"),
        time("quiet-from", "QuietHoursFrom", "settings.quietFrom", "22:00"),
        time("quiet-until", "QuietHoursUntil", "settings.quietUntil", "07:00"),
        program(AgentProviderID::codex(), "automatic"),
        program(AgentProviderID::claude(), "automatic"),
        program(AgentProviderID::antigravity(), "automatic"),
        readingWay()};
    state.launchAtLogin = LaunchAtLoginController::State::on;
    state.noticeDelivery = NoticeDelivery::works;
    state.order = {AgentProviderID::codex(), AgentProviderID::claude(),
                   AgentProviderID::antigravity()};
    state.enabled = {state.order.begin(), state.order.end()};
    state.agents = {
        facts(AgentProviderID::codex(), "/home/robin/.local/bin/codex", "codex-cli 0.61.0"),
        facts(AgentProviderID::claude(), "/home/robin/.local/bin/claude", "2.0.44 (Claude Code)"),
        facts(AgentProviderID::antigravity(), "/home/robin/.local/bin/agy", "1.4.2")};
    state.agents.back().loggedIn.reset();
    state.systemLanguage = "de";
    state.dataFolder = "~/.local/share/Vellmark";
    state.dataSize = 3'420'000;
    state.statusLine = {
        .file = "~/.claude/settings.json",
        .change = {{ChangedLine::Kind::same, "  \"model\": \"opus\","},
                   {ChangedLine::Kind::removed, "    \"command\": \"git branch --show-current\""},
                   {ChangedLine::Kind::added,
                    "    \"command\": \"'/usr/bin/vellmark' statusline --color "
                    "always --then 'git branch --show-current'\""}}};
    return state;
}

SettingsPageState uncheckedSettings() {
    SettingsPageState state = settings();
    state.agents.clear();
    state.isChecking = true;
    state.dataSize.reset();
    state.hasHistory = false;
    state.launchAtLogin = LaunchAtLoginController::State::unavailable;
    return state;
}

SettingsPageState unreadySettings() {
    SettingsPageState state = settings();
    state.launchAtLogin = LaunchAtLoginController::State::needsApproval;
    state.enabled.erase(AgentProviderID::codex());
    state.agents[0].toolPath.reset();
    state.agents[1].loggedIn = false;
    state.agents[2].toolPath.reset();
    valueOf(state, "claude-path").value = "/home/robin/tools/claude-code/bin/claude";
    state.agents[1].toolPath = "/home/robin/tools/claude-code/bin/claude";
    valueOf(state, "antigravity-path").value = "/opt/antigravity/agy";
    valueOf(state, "status-figure").value = "least-left";
    valueOf(state, "notices").value = "off";
    valueOf(state, "quiet-hours").value = "off";
    state.noticeDelivery = NoticeDelivery::unserved;
    state.trouble = "/home/robin/.config/Vellmark/preferences.json: No space left on device";
    state.commandTool = {.state = CommandLineTool::State::off,
                         .link = "/usr/local/bin/vellmark",
                         .command = "sudo mkdir -p '/usr/local/bin' && sudo ln -s "
                                    "'/Applications/Vellmark.app/Contents/Helpers/vellmark' "
                                    "'/usr/local/bin/vellmark'"};
    return state;
}

} // namespace vellmark::samples
