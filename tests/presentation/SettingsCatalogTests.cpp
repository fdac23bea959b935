#include "SettingsTest.h"
#include "probes/ProviderRegistry.h"
#include "store/AgentSettings.h"
#include "store/AppSettings.h"
#include "support/Matchers.h"

#include <set>

namespace vellmark::tests {
namespace {

using State = LaunchAtLoginController::State;

class SettingsCatalogTest : public SettingsTest {
protected:
    /// Sets what the user typed; the key of the refusal, or nothing.
    std::string set(const char* name, const std::string& value) {
        const auto refusal = catalog.set(*catalog.find(name), value);
        return refusal ? refusal->key : std::string();
    }
    std::string value(const char* name) { return catalog.value(*catalog.find(name)); }

    LaunchAtLoginController& login = *launchAtLogin;
    SettingsCatalog catalog{*preferences, machine, login};
};

TEST_F(SettingsCatalogTest, EverySettingHasItsDefaultItsWordsAndTakesWhatItAllows) {
    const auto expectDefaults = [this] {
        for (const SettingItem& item : catalog.items()) {
            EXPECT_TRUE(item.kind == SettingItem::Kind::loginItem ||
                        catalog.value(item) == catalog.defaultValue(item))
                << item.name;
        }
    };
    expectDefaults();
    std::set<std::string> names;
    for (const SettingItem& item : catalog.items()) {
        EXPECT_TRUE(names.insert(item.name).second) << item.name;
        for (const std::string& allowed : item.values) {
            EXPECT_FALSE(catalog.set(item, allowed)) << item.name << " " << allowed;
            EXPECT_EQ(catalog.value(item), allowed);
        }
        const auto refusal = catalog.set(item, "nonsense");
        ASSERT_TRUE(refusal) << item.name;
        EXPECT_EQ(refusal->asked, "nonsense");
    }
    catalog.resetAll();
    expectDefaults();
    EXPECT_EQ(loginItem.changes, 0) << "the system's own setting stays as it is";
}

TEST_F(SettingsCatalogTest, WhatIsSetHoldsForTheProgram) {
    EXPECT_EQ(set("first-figure", "used"), "");
    EXPECT_EQ(valueOf(*preferences, setting::firstFigure), FirstFigure::used);
    EXPECT_EQ(set("interval", "30"), "");
    EXPECT_EQ(length(valueOf(*preferences, setting::readingInterval)), Seconds(1800));
    preferences->setString("ReadingInterval", "7");
    EXPECT_EQ(value("interval"), "5") << "another version's value is none";

    const AgentSettings agents(*preferences, providerRegistry());
    EXPECT_EQ(set("agent-order", "antigravity, claude"), "");
    EXPECT_EQ(value("agent-order"), "antigravity,claude,codex");
    EXPECT_EQ(set("agents", "claude"), "");
    EXPECT_THAT(agents.enabled(), ElementsAre(AgentProviderID("claude")));
    EXPECT_EQ(set("agents", "none"), "");
    EXPECT_EQ(value("agents"), "none");
    EXPECT_EQ(set("agents", "claude,claude"), "settings.refused.value");
    EXPECT_EQ(set("agent-order", ""), "settings.refused.value");

    EXPECT_EQ(set("claude-interval", "45"), "");
    EXPECT_EQ(agents.readingOptions(*providerDescriptor(AgentProviderID("claude"))).interval,
              Seconds(2700));
    for (const char* wrong : {"0", "1441", "5x", "-1", "", "99999999999"}) {
        EXPECT_EQ(set("claude-interval", wrong), "settings.refused.value") << wrong;
    }
    EXPECT_EQ(set("claude-interval", "automatic"), "");
    EXPECT_EQ(value("claude-interval"), "automatic");
}

TEST_F(SettingsCatalogTest, AProgramIsChosenWhenItCanBeRun) {
    const auto program = directory.writeExecutable("machine/home/my tools/claude", "#!/bin/sh\n");
    writeFile(machine.home / "notes", "text");
    EXPECT_EQ(set("claude-path", "claude"), "settings.refused.relative");
    EXPECT_EQ(set("claude-path", (machine.home / "notes").string()),
              "settings.refused.notExecutable");
    EXPECT_EQ(set("claude-path", machine.home.string()), "settings.refused.notExecutable");
    EXPECT_EQ(value("claude-path"), "automatic");

    EXPECT_EQ(set("claude-path", "~/my tools/claude"), "");
    EXPECT_EQ(value("claude-path"), program.string());
    const AgentSettings agents(*preferences, providerRegistry());
    EXPECT_THAT(agents.applyExecutables(machine), ElementsAre(AgentProviderID("claude")));
    EXPECT_THAT(agents.applyExecutables(machine), ElementsAre()) << "nothing new";
    EXPECT_EQ(catalog.valueText(*catalog.find("claude-path"), words), "~/my tools/claude");
    fs::remove(program);
    EXPECT_NE(catalog.valueText(*catalog.find("claude-path"), words), "~/my tools/claude");
    EXPECT_EQ(set("claude-path", "automatic"), "");
    EXPECT_THAT(agents.applyExecutables(machine), ElementsAre(AgentProviderID("claude")));
}

TEST_F(SettingsCatalogTest, StartingAtLoginIsTheSystemsToSay) {
    EXPECT_EQ(login.state(), State::off);
    login.setUpOnce();
    EXPECT_EQ(login.state(), State::on) << "the first launch ever";
    loginItem.state = LoginItem::State::off; // the user, in the system's settings
    EXPECT_EQ(value("launch-at-login"), "off");
    login.setUpOnce();
    EXPECT_EQ(login.state(), State::off);
    EXPECT_EQ(login.followMove(), std::nullopt) << "what is off is not switched on again";
    EXPECT_EQ(set("launch-at-login", "on"), "");
    loginItem.state = LoginItem::State::needsApproval;
    EXPECT_EQ(login.state(), State::needsApproval);
    EXPECT_EQ(value("launch-at-login"), "off");
    loginItem.refusal = "Not today";
    EXPECT_EQ(set("launch-at-login", "off"), "settings.refused.system");
    EXPECT_EQ(login.state(), State::needsApproval);
}

TEST_F(SettingsCatalogTest, AMovedProgramIsRegisteredAnew) {
    const auto old = directory.writeExecutable("old/vellmark-desktop", "");
    loginItem.program = old;
    login.setEnabled(true);
    loginItem.program = "/opt/new/vellmark-desktop";
    EXPECT_EQ(login.followMove(), std::nullopt) << "both are there: this is another copy";
    fs::remove(old);
    EXPECT_EQ(login.followMove(), (LaunchAtLoginController::Move{old, loginItem.program}));
    EXPECT_EQ(loginItem.registered, loginItem.program);
    EXPECT_EQ(login.followMove(), std::nullopt);

    // Where the system does not tell what it starts, what was kept does.
    loginItem.registered.reset();
    loginItem.program = "/opt/newer/vellmark-desktop";
    EXPECT_EQ(login.followMove(), (LaunchAtLoginController::Move{"/opt/new/vellmark-desktop",
                                                                 "/opt/newer/vellmark-desktop"}));
}

TEST_F(SettingsCatalogTest, WhereNothingCanBeManagedNothingIsTouched) {
    LaunchAtLoginController demo(*preferences, nullptr);
    demo.setUpOnce();
    EXPECT_EQ(demo.followMove(), std::nullopt);
    EXPECT_EQ(demo.state(), State::unavailable);
    EXPECT_FALSE(preferences->boolean("LaunchAtLoginInitialSetupDone"));
    SettingsCatalog ofDemo(*preferences, machine, demo);
    const auto refusal = ofDemo.set(*ofDemo.find("launch-at-login"), "on");
    ASSERT_TRUE(refusal);
    EXPECT_EQ(refusal->key, "settings.refused.loginItem");
}

} // namespace
} // namespace vellmark::tests
