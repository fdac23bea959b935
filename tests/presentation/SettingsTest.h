#pragma once

#include "AgentNames.h"
#include "platform/PreferencesFile.h"
#include "presentation/SettingsPageModel.h"
#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace vellmark::tests {

/// What a system keeps of what it starts at login, in memory.
struct RememberedItem {
    LoginItem::State state = LoginItem::State::off;
    /// What it makes of the wish that the program be started.
    LoginItem::State ifEnabled = LoginItem::State::on;
    std::filesystem::path program = "/opt/vellmark-desktop";
    std::optional<std::filesystem::path> registered;
    std::string refusal;
    int changes = 0;
    int openings = 0; ///< of the system's settings
};

class FakeLoginItem final : public LoginItem {
public:
    explicit FakeLoginItem(RememberedItem& item) : item_(item) {}
    State state() const override { return item_.state; }
    std::string setEnabled(bool enabled) override {
        ++item_.changes;
        if (item_.refusal.empty()) {
            item_.state = enabled ? item_.ifEnabled : State::off;
            item_.registered = enabled ? std::optional(item_.program) : std::nullopt;
        }
        return item_.refusal;
    }
    std::filesystem::path program() const override { return item_.program; }
    std::optional<std::filesystem::path> registeredProgram() const override {
        return item_.registered;
    }
    void openSystemSettings() const override { ++item_.openings; }

private:
    RememberedItem& item_;
};

/// What stands behind a page with settings, made up by the test.
class SettingsTest : public testing::Test {
protected:
    SettingsPageModel::Sources settingsSources() {
        return {.preferences = *preferences,
                .machine = machine,
                .launchAtLogin = *launchAtLogin,
                .words = [this]() -> const Localization& { return words; },
                .systemLanguage = "fr",
                .factsOf = [this](const AgentProviderID& id) { return factsOf(id); },
                .isAsking = [this](const AgentProviderID& id) { return isAsking(id); },
                .ask = [this](const AgentProviderID& id,
                              bool anew) { asking.push_back(id.rawValue + (anew ? " anew" : "")); },
                .changed = [this] { ++changes; },
                .takeSettings = [this] { ++takings; },
                .hasHistory = [this] { return hasHistory; },
                .deleteHistory =
                    [this](std::function<void(std::error_code)> done) {
                        done(deletion);
                        lastDone = std::move(done);
                    },
                .showFolder = [this](const std::filesystem::path& folder) { shownFolder = folder; },
                .noticeDelivery = [this] { return delivery; },
                .lookForNoticeService = [this] { ++noticeLooks; },
                .allowNotices = [this] { ++allowances; },
                .terminalProgram = directory.path() / "vellmark",
                .commandLineTool = commandLineTool,
                .copyText = [this](const std::string& text) { copied = text; }};
    }
    const AgentFacts* factsOf(const AgentProviderID& id) const {
        const auto found = facts.find(id);
        return found == facts.end() ? nullptr : &found->second;
    }
    bool isAsking(const AgentProviderID& id) const {
        return std::ranges::find(asked, id) != asked.end();
    }

    TemporaryDirectory directory;
    Machine machine = Machine::sandbox(directory / "machine");
    std::unique_ptr<Preferences> preferences =
        makePreferencesFile(directory / "settings" / "preferences.json");
    RememberedItem loginItem;
    std::unique_ptr<LaunchAtLoginController> launchAtLogin =
        std::make_unique<LaunchAtLoginController>(*preferences,
                                                  std::make_unique<FakeLoginItem>(loginItem));
    Localization words = english;
    /// Of the agents that have answered, and those that have not yet.
    std::map<AgentProviderID, AgentFacts> facts;
    std::vector<AgentProviderID> asked;
    std::vector<std::string> asking;
    bool hasHistory = true;
    std::error_code deletion;
    std::function<void(std::error_code)> lastDone;
    std::filesystem::path shownFolder;
    NoticeDelivery delivery = NoticeDelivery::works;
    int noticeLooks = 0;
    int allowances = 0;
    int changes = 0;
    int takings = 0;
    std::optional<CommandLineTool> commandLineTool;
    std::string copied;
};

} // namespace vellmark::tests
