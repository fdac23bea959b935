#include "platform/PreferencesFile.h"
#include "presentation/LaunchAtLoginController.h"
#include "presentation/SettingsCatalog.h"
#include "probes/ProviderRegistry.h"
#include "store/AgentSettings.h"
#include "store/AppSettings.h"
#include "support/TemporaryDirectory.h"

#include <gmock/gmock.h>

#include <set>

namespace vellmark::tests {
namespace {

using State = LaunchAtLoginController::State;
using testing::ElementsAre;

/// What a system keeps, in memory.
struct RememberedItem {
    LoginItem::State state = LoginItem::State::off;
    std::filesystem::path program = "/opt/vellmark-desktop";
    std::optional<std::filesystem::path> registered;
    std::string refusal;
    int changes = 0;
};

class FakeLoginItem final : public LoginItem {
public:
    explicit FakeLoginItem(RememberedItem& item) : item_(item) {}
    State state() const override { return item_.state; }
    std::string setEnabled(bool enabled) override {
        ++item_.changes;
        if (item_.refusal.empty()) {
            item_.state = enabled ? State::on : State::off;
            item_.registered = enabled ? std::optional(item_.program) : std::nullopt;
        }
        return item_.refusal;
    }
    std::filesystem::path program() const override { return item_.program; }
    std::optional<std::filesystem::path> registeredProgram() const override {
        return item_.registered;
    }

private:
    RememberedItem& item_;
};

class SettingsCatalogTest : public testing::Test {
protected:
    /// Sets what the user typed; the key of the refusal, or nothing.
    std::string set(const char* name, const std::string& value) {
        const auto refusal = catalog_.set(*catalog_.find(name), value);
        return refusal ? refusal->key : std::string();
    }
    std::string value(const char* name) { return catalog_.value(*catalog_.find(name)); }

    TemporaryDirectory directory_;
    Machine machine_ = Machine::sandbox(directory_.path());
    std::unique_ptr<Preferences> preferences_ = makePreferencesFile(directory_ / "p.json");
    RememberedItem item_;
    LaunchAtLoginController login_{*preferences_, std::make_unique<FakeLoginItem>(item_)};
    SettingsCatalog catalog_{*preferences_, machine_, login_};
};

TEST_F(SettingsCatalogTest, EverySettingHasItsDefaultItsWordsAndTakesWhatItAllows) {
    std::set<std::string> names;
    for (const SettingItem& item : catalog_.items()) {
        EXPECT_TRUE(names.insert(item.name).second) << item.name;
        if (item.kind != SettingItem::Kind::loginItem) {
            EXPECT_EQ(catalog_.value(item), catalog_.defaultValue(item)) << item.name;
        }
        for (const std::string& allowed : item.values) {
            EXPECT_FALSE(catalog_.set(item, allowed)) << item.name << " " << allowed;
            EXPECT_EQ(catalog_.value(item), allowed);
        }
        const auto refusal = catalog_.set(item, "nonsense");
        ASSERT_TRUE(refusal) << item.name;
        EXPECT_EQ(refusal->asked, "nonsense");
    }
    catalog_.resetAll();
    for (const SettingItem& item : catalog_.items()) {
        if (item.kind != SettingItem::Kind::loginItem) {
            EXPECT_EQ(catalog_.value(item), catalog_.defaultValue(item)) << item.name;
        }
    }
    EXPECT_EQ(item_.changes, 0) << "the system's own setting stays as it is";
}

TEST_F(SettingsCatalogTest, WhatIsSetHoldsForTheProgram) {
    EXPECT_EQ(set("first-figure", "used"), "");
    EXPECT_EQ(valueOf(*preferences_, setting::firstFigure), FirstFigure::used);
    EXPECT_EQ(set("interval", "30"), "");
    EXPECT_EQ(length(valueOf(*preferences_, setting::readingInterval)), Seconds(1800));
    preferences_->setString("ReadingInterval", "7");
    EXPECT_EQ(value("interval"), "5") << "another version's value is none";

    const AgentSettings agents(*preferences_, providerRegistry());
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
    const auto program = directory_.writeExecutable("home/my tools/claude", "#!/bin/sh\n");
    directory_.write("home/notes", "text");
    EXPECT_EQ(set("claude-path", "claude"), "settings.refused.relative");
    EXPECT_EQ(set("claude-path", (directory_ / "home/notes").string()),
              "settings.refused.notExecutable");
    EXPECT_EQ(set("claude-path", (directory_ / "home").string()), "settings.refused.notExecutable");
    EXPECT_EQ(value("claude-path"), "automatic");

    EXPECT_EQ(set("claude-path", "~/my tools/claude"), "");
    EXPECT_EQ(value("claude-path"), program.string());
    const AgentSettings agents(*preferences_, providerRegistry());
    EXPECT_THAT(agents.applyExecutables(machine_), ElementsAre(AgentProviderID("claude")));
    EXPECT_THAT(agents.applyExecutables(machine_), ElementsAre()) << "nothing new";
    const Localization words("en");
    EXPECT_EQ(catalog_.valueText(*catalog_.find("claude-path"), words), "~/my tools/claude");
    std::filesystem::remove(program);
    EXPECT_NE(catalog_.valueText(*catalog_.find("claude-path"), words), "~/my tools/claude");
    EXPECT_EQ(set("claude-path", "automatic"), "");
    EXPECT_THAT(agents.applyExecutables(machine_), ElementsAre(AgentProviderID("claude")));
}

TEST_F(SettingsCatalogTest, StartingAtLoginIsTheSystemsToSay) {
    EXPECT_EQ(login_.state(), State::off);
    login_.setUpOnce();
    EXPECT_EQ(login_.state(), State::on) << "the first launch ever";
    item_.state = LoginItem::State::off; // the user, in the system's settings
    EXPECT_EQ(value("launch-at-login"), "off");
    login_.setUpOnce();
    EXPECT_EQ(login_.state(), State::off);
    EXPECT_EQ(login_.followMove(), std::nullopt) << "what is off is not switched on again";
    EXPECT_EQ(set("launch-at-login", "on"), "");
    item_.state = LoginItem::State::needsApproval;
    EXPECT_EQ(login_.state(), State::needsApproval);
    EXPECT_EQ(value("launch-at-login"), "off");
    item_.refusal = "Not today";
    EXPECT_EQ(set("launch-at-login", "off"), "settings.refused.system");
    EXPECT_EQ(login_.state(), State::needsApproval);
}

TEST_F(SettingsCatalogTest, AMovedProgramIsRegisteredAnew) {
    const auto old = directory_.writeExecutable("old/vellmark-desktop", "");
    item_.program = old;
    login_.setEnabled(true);
    item_.program = "/opt/new/vellmark-desktop";
    EXPECT_EQ(login_.followMove(), std::nullopt) << "both are there: this is another copy";
    std::filesystem::remove(old);
    EXPECT_EQ(login_.followMove(), (LaunchAtLoginController::Move{old, item_.program}));
    EXPECT_EQ(item_.registered, item_.program);
    EXPECT_EQ(login_.followMove(), std::nullopt);

    // Where the system does not tell what it starts, what was kept does.
    item_.registered.reset();
    item_.program = "/opt/newer/vellmark-desktop";
    EXPECT_EQ(login_.followMove(), (LaunchAtLoginController::Move{"/opt/new/vellmark-desktop",
                                                                  "/opt/newer/vellmark-desktop"}));
}

TEST_F(SettingsCatalogTest, WhereNothingCanBeManagedNothingIsTouched) {
    LaunchAtLoginController demo(*preferences_, nullptr);
    demo.setUpOnce();
    EXPECT_EQ(demo.followMove(), std::nullopt);
    EXPECT_EQ(demo.state(), State::unavailable);
    EXPECT_FALSE(preferences_->boolean("LaunchAtLoginInitialSetupDone"));
    SettingsCatalog catalog(*preferences_, machine_, demo);
    const auto refusal = catalog.set(*catalog.find("launch-at-login"), "on");
    ASSERT_TRUE(refusal);
    EXPECT_EQ(refusal->key, "settings.refused.loginItem");
}

} // namespace
} // namespace vellmark::tests
