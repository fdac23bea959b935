#include "SettingsTest.h"
#include "support/Matchers.h"

#include <algorithm>

namespace vellmark::tests {
namespace {

class SettingsPageTest : public SettingsTest {
protected:
    SettingsPageContent content() { return model->content(); }
    std::vector<SettingRowContent> rows() {
        std::vector<SettingRowContent> all;
        const SettingsPageContent page = content();
        for (const auto* sections : {&page.firstSections, &page.lastSections}) {
            for (const SettingsSectionContent& section : *sections) {
                all.insert(all.end(), section.rows.begin(), section.rows.end());
            }
        }
        for (const AgentProgramContent& program : page.programs) {
            all.insert(all.end(), program.ways.begin(), program.ways.end());
        }
        return all;
    }
    SettingRowContent row(std::string_view name) {
        const std::vector<SettingRowContent> all = rows();
        const auto found = std::ranges::find(all, name, &SettingRowContent::name);
        return found == all.end() ? SettingRowContent() : *found;
    }
    std::vector<std::string> agentNames() {
        std::vector<std::string> names;
        for (const AgentSettingContent& agent : content().agents) {
            names.push_back(agent.name);
        }
        return names;
    }

    /// The model of a program that starts anew.
    void remake() {
        model = std::make_unique<SettingsPageModel>(settingsSources());
        actions = model->actions();
    }

    std::unique_ptr<SettingsPageModel> model =
        std::make_unique<SettingsPageModel>(settingsSources());
    SettingsPageActions actions = model->actions();
};

TEST_F(SettingsPageTest, HasAPlaceForEverySetting) {
    preferences->setString("QuietHours", "on");
    std::vector<std::string> shown{"agents", "agent-order"}; // the list above the rows
    for (const SettingRowContent& row : rows()) {
        shown.push_back(row.name);
    }
    for (const AgentProgramContent& program : content().programs) {
        shown.push_back(program.id.rawValue + "-path");
    }
    const SettingsCatalog catalog(*preferences, machine, *launchAtLogin);
    for (const SettingItem& item : catalog.items()) {
        EXPECT_THAT(shown, Contains(item.name));
    }
}

TEST_F(SettingsPageTest, KeepsAndShowsEveryChoiceThatItOffers) {
    int tried = 0;
    for (const SettingRowContent& offered : rows()) {
        const auto& name = offered.name;
        if (const auto* toggle = std::get_if<SettingSwitch>(&offered.control)) {
            for (const bool isOn : {!toggle->isOn, toggle->isOn}) {
                actions.change(name, isOn ? toggle->onValue : toggle->offValue);
                EXPECT_EQ(std::get<SettingSwitch>(row(name).control).isOn, isOn) << name;
                ++tried;
            }
        } else if (const auto* choices = std::get_if<SettingChoices>(&offered.control)) {
            ASSERT_GT(choices->choices.size(), 1U) << name;
            for (const SettingChoices::Choice& choice : choices->choices) {
                EXPECT_THAT(choice.title, Not(HasSubstr("settings."))) << "no words for it";
                actions.change(name, choice.value);
                EXPECT_EQ(std::get<SettingChoices>(row(name).control).current, choice.value);
                ++tried;
            }
        }
        EXPECT_THAT(content().trouble, IsEmpty()) << name;
    }
    EXPECT_EQ(takings, tried);
    EXPECT_EQ(changes, tried);
    EXPECT_EQ(std::get<SettingChoices>(row("language").control).choices.front().title,
              "System (Français)");
    // It is on disk, not only in this program.
    const auto reread = makePreferencesFile(directory / "settings" / "preferences.json");
    EXPECT_EQ(reread->string("AppLanguage"), "es");
    EXPECT_EQ(reread->string("FirstFigure"), "used");
    EXPECT_EQ(reread->string("ReadingInterval"), "30");
}

TEST_F(SettingsPageTest, ShowsTheLoginItemAsTheSystemHasIt) {
    loginItem.ifEnabled = LoginItem::State::needsApproval;
    const std::string name = "launch-at-login";
    const auto shownSwitch = [&] { return std::get<SettingSwitch>(row(name).control); };
    EXPECT_FALSE(shownSwitch().isOn);
    EXPECT_THAT(row(name).button.title, IsEmpty());
    actions.change(name, shownSwitch().onValue);
    EXPECT_TRUE(shownSwitch().isOn);
    EXPECT_THAT(row(name).explanation, HasSubstr("approval"));
    EXPECT_THAT(row(name).button.title, Not(IsEmpty()));
    actions.press(name);
    EXPECT_EQ(loginItem.openings, 1);

    launchAtLogin = std::make_unique<LaunchAtLoginController>(*preferences, nullptr);
    hasHistory = false;
    remake();
    EXPECT_FALSE(shownSwitch().isEnabled);
    EXPECT_THAT(row(name).explanation, Not(IsEmpty()));
    EXPECT_THAT(row(settingsRow::history).button.title, IsEmpty()) << "there is nothing to delete";
}

TEST_F(SettingsPageTest, TheCommandLineToolIsWhatTheFileSystemSays) {
    const std::string name(settingsRow::commandLineTool);
    EXPECT_THAT(row(name).name, IsEmpty()) << "a package brings it";

    const fs::path program = directory / "Vellmark.app" / "Contents/Helpers/vellmark";
    const fs::path link = directory / "bin" / "vellmark";
    writeFile(program, "");
    commandLineTool.emplace(program, link);
    remake();
    const auto shownSwitch = [&] { return std::get<SettingSwitch>(row(name).control); };
    EXPECT_EQ(shownSwitch(), SettingSwitch{});
    actions.change(name, shownSwitch().onValue);
    EXPECT_TRUE(shownSwitch().isOn);
    EXPECT_EQ(fs::read_symlink(link), program);
    fs::remove(link);
    EXPECT_FALSE(shownSwitch().isOn) << "taken away by somebody";
    EXPECT_THAT(row(name).button.title, IsEmpty());

    writeFile(link, "another's");
    EXPECT_EQ(shownSwitch(), (SettingSwitch{.isOn = false, .isEnabled = false}));
    EXPECT_THAT(row(name).explanation, HasSubstr(link.string()));
    actions.change(name, shownSwitch().onValue);
    EXPECT_THAT(content().trouble, HasSubstr("could not be changed"));
    EXPECT_TRUE(fs::is_regular_file(link));
}

TEST_F(SettingsPageTest, TheCommandLineToolSaysWhatAnAdministratorTypes) {
    const std::string name(settingsRow::commandLineTool);
    // Below a file there is no folder, for root neither.
    const fs::path folder = directory / "file" / "bin";
    writeFile(folder.parent_path(), "");
    commandLineTool.emplace("/Apps/It's/Vellmark.app/Contents/Helpers/vellmark",
                            folder / "vellmark");
    remake();
    EXPECT_FALSE(std::get<SettingSwitch>(row(name).control).isEnabled);
    actions.press(name);
    EXPECT_EQ(copied,
              "sudo mkdir -p '" + folder.string() +
                  "' && sudo ln -s '/Apps/It'\\''s/Vellmark.app/Contents/Helpers/vellmark' '" +
                  folder.string() + "/vellmark'");
    EXPECT_THAT(row(name).explanation, HasSubstr(copied));
}

TEST_F(SettingsPageTest, NoticesAreChosenByKindAndSayWhyTheyDoNotCome) {
    const auto kept = [this] { return NoticeSettings::of(*preferences); };
    EXPECT_EQ(kept().kinds.size(), 6U);
    actions.change("notice-used-up", "off");
    actions.change("notice-reset", "on");
    EXPECT_FALSE(kept().tells(NoticeKind::usedUp));
    EXPECT_TRUE(kept().tells(NoticeKind::reset));

    EXPECT_THAT(row("quiet-from").name, IsEmpty()) << "there are no quiet hours";
    EXPECT_FALSE(kept().quietHours);
    actions.change("quiet-hours", "on");
    actions.change("quiet-until", "6:45");
    EXPECT_EQ(kept().quietHours, (NoticeSettings::QuietHours{{22 * 60}, {6 * 60 + 45}}));
    const auto until = std::get<SettingChoices>(row("quiet-until").control);
    EXPECT_EQ(until.current, "06:45");
    EXPECT_EQ(until.choices.size(), 49U) << "each half hour, and what the terminal has set";
    EXPECT_EQ(until.choices[14].title, "6:45 AM");
    actions.change("quiet-until", "25:00");
    EXPECT_THAT(content().trouble, HasSubstr("00:00-23:59"));

    actions.change("notices", "off");
    EXPECT_THAT(kept().kinds, IsEmpty());
    EXPECT_FALSE(std::get<SettingSwitch>(row("notice-back").control).isEnabled);

    EXPECT_THAT(row("notices").button.title, IsEmpty());
    delivery = NoticeDelivery::unserved;
    EXPECT_THAT(row("notices").explanation, HasSubstr("Nobody shows notices here"));
    actions.press("notices");
    EXPECT_EQ(allowances, 1);
    actions.appear();
    EXPECT_EQ(noticeLooks, 1);
}

TEST_F(SettingsPageTest, TellsWhatEachAgentLacksAndTheWayOut) {
    EXPECT_EQ(content().agents[0].detail, "Checking …");
    actions.appear();
    asked = {codex};
    EXPECT_TRUE(content().isChecking);
    asked.clear();
    facts = {{codex, {codex, "/usr/bin/codex", "codex-cli 0.61.0", true}},
             {claude, {claude, "/usr/bin/claude", "2.0.44 (Claude Code)", false}},
             {antigravity, {.id = antigravity}}};
    EXPECT_FALSE(content().isChecking);
    actions.checkAgents();
    EXPECT_THAT(asking, ElementsAre("codex", "claude", "antigravity", "codex anew", "claude anew",
                                    "antigravity anew"));
    const auto agents = content().agents;
    EXPECT_EQ(agents[0].detail, "Codex CLI 0.61.0 · /usr/bin/codex");
    EXPECT_EQ(agents[0].status, "logged in");
    EXPECT_THAT(agents[0].wayOut.title, IsEmpty());
    EXPECT_EQ(agents[1].wayOut.title, "Log in …");
    EXPECT_EQ(agents[2].wayOut.title, "Install …");
    EXPECT_EQ(agents[2].detail, "Antigravity CLI not found");
    actions.enableAgent(antigravity, false);
    EXPECT_THAT(content().agents[2].wayOut.title, IsEmpty()) << "nobody wants it";
}

TEST_F(SettingsPageTest, TakesOnlyProgramsThatCanBeRun) {
    const fs::path program = directory / "my codex";
    actions.chooseProgram(codex, program.string());
    EXPECT_THAT(content().trouble, HasSubstr(program.string()));
    EXPECT_THAT(content().programs[0].chosenPath, IsEmpty());

    writeFile(program, "#!/bin/sh\n");
    fs::permissions(program, fs::perms::owner_all);
    actions.chooseProgram(codex, program.string());
    EXPECT_THAT(content().trouble, IsEmpty()) << "of the attempt before";
    EXPECT_EQ(content().programs[0].chosenPath, program.string());
    EXPECT_THAT(asking, Contains("codex anew"));
    facts[codex].id = codex;
    EXPECT_THAT(content().programs[0].explanation, HasSubstr("no longer"));
    actions.chooseProgram(codex, {});
    EXPECT_THAT(content().programs[0].chosenPath, IsEmpty());
}

TEST_F(SettingsPageTest, MeasuresAndShowsTheDataFolder) {
    writeFile(machine.supportDirectory() / "usage-history.json", std::string(1'500'000, 'x'));
    writeFile(machine.supportDirectory() / "deleted" / "old.json", std::string(900'000, 'x'));
    EXPECT_THAT(row(settingsRow::dataFolder).explanation, Not(HasSubstr("MB")));
    actions.appear();
    EXPECT_THAT(row(settingsRow::dataFolder).explanation, HasSubstr("2.4 MB"));
    actions.press(std::string(settingsRow::dataFolder));
    EXPECT_EQ(shownFolder, machine.supportDirectory());
}

TEST_F(SettingsPageTest, TellsWhenTheHistoryCannotBeDeleted) {
    deletion = std::make_error_code(std::errc::no_space_on_device);
    actions.press(std::string(settingsRow::history));
    EXPECT_THAT(content().trouble, HasSubstr("could not be deleted"));
    deletion.clear();
    actions.press(std::string(settingsRow::history));
    EXPECT_THAT(content().trouble, IsEmpty());
    // An answer may come when the page's model has gone.
    actions.press(std::string(settingsRow::history));
    model.reset();
    lastDone(std::error_code());
}

TEST_F(SettingsPageTest, PutsAgentsInOrderAndResetsAllButTheStartAtLogin) {
    actions.change("launch-at-login", "on");
    actions.change("language", "de");
    actions.orderAgents({antigravity, codex, claude});
    actions.enableAgent(codex, false);
    EXPECT_THAT(agentNames(), ElementsAre("Antigravity", "Codex", "Claude"));
    EXPECT_FALSE(content().agents[1].isEnabled);
    EXPECT_EQ(takings, 4);
    actions.press(std::string(settingsRow::reset));
    EXPECT_EQ(std::get<SettingChoices>(row("language").control).current, "system");
    EXPECT_THAT(agentNames(), ElementsAre("Codex", "Claude", "Antigravity"));
    EXPECT_TRUE(content().agents[0].isEnabled);
    EXPECT_EQ(loginItem.state, LoginItem::State::on);
}

TEST_F(SettingsPageTest, SaysWhenAChangeIsNotOnDisk) {
    // A file stands where the settings' folder would be.
    preferences = makePreferencesFile(directory / "blocked" / "preferences.json");
    writeFile(directory / "blocked", "");
    remake();
    actions.change("appearance", "dark");
    EXPECT_EQ(std::get<SettingChoices>(row("appearance").control).current, "dark");
    EXPECT_THAT(content().trouble, HasSubstr("could not be saved"));
    fs::remove(directory / "blocked");
    preferences->retry();
    EXPECT_THAT(content().trouble, IsEmpty());
}

TEST_F(SettingsPageTest, PutsTheStatusLineIntoClaudesSettingsAndOutAgain) {
    const auto file = machine.home / ".claude/settings.json";
    const auto pressStatusLine = [&] { actions.press(std::string(settingsRow::statusLine)); };
    directory.write("vellmark", "");
    actions.appear();
    EXPECT_THAT(row(settingsRow::statusLine).name, IsEmpty()) << "Claude Code was never used";
    writeFile(file, "{\n  \"model\": \"opus\"\n}\n");
    actions.appear();
    EXPECT_EQ(row(settingsRow::statusLine).button.title, "Set up …");
    EXPECT_THAT(content().statusLineQuestion.text, HasSubstr("~/.claude/settings.json"));
    EXPECT_THAT(content().statusLineQuestion.text, HasSubstr("\n+ \"statusLine\": {"));

    writeFile(file, "{\n  \"model\": \"haiku\"\n}\n");
    pressStatusLine();
    EXPECT_THAT(content().trouble, HasSubstr("changed meanwhile"));
    EXPECT_THAT(contentOf(file), Not(HasSubstr("statusLine")));

    pressStatusLine();
    EXPECT_THAT(content().trouble, IsEmpty());
    EXPECT_THAT(contentOf(file), HasSubstr((directory.path() / "vellmark").string()));
    EXPECT_EQ(row(settingsRow::statusLine).button.title, "Remove …");
    pressStatusLine();
    EXPECT_EQ(contentOf(file), "{\n  \"model\": \"haiku\"\n}\n");

    writeFile(file, "{ // mine");
    actions.appear();
    EXPECT_THAT(row(settingsRow::statusLine).name, IsEmpty());
}

} // namespace
} // namespace vellmark::tests
