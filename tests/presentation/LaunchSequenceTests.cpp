#include "presentation/LaunchHelp.h"
#include "presentation/LaunchSequence.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vellmark::tests {
namespace {

/// Writes down what it is asked to do.
class RecordedSteps final : public LaunchSteps {
public:
    bool otherRuns = false;
    std::string done;

    bool handOverToRunningInstance() override { return note("single instance"), otherRuns; }
    void terminate() override { note("terminate"); }
    void becomeAccessory() override { note("accessory"); }
    void buildMainMenu() override { note("menu"); }
    void applyAppearance() override { note("appearance"); }
    void observeAppearance() override { note("observe appearance"); }
    void createStatusItem() override { note("status item"); }
    void configurePopover() override { note("popover"); }
    void observeStore() override { note("observe store"); }
    void observeLanguage() override { note("observe language"); }
    void setUpLaunchAtLogin() override { note("login item"); }
    void followMoveAtLogin() override { note("moved login item"); }
    void startLaunchRefresh() override { note("refresh"); }
    void observeWake() override { note("wake"); }
    void startLoops() override { note("loops"); }
    void runFirstRun() override { note("first run"); }
    void showMainWindow() override { note("main window"); }
    void showAbout() override { note("about"); }
    void showPopover() override { note("show popover"); }

private:
    void note(const char* step) { done += (done.empty() ? "" : ", ") + std::string(step); }
};

TEST(LaunchSequence, GoesAsFarAsTheLaunchAllows) {
    const std::string steps = "single instance, accessory, menu, appearance, observe appearance, "
                              "status item, popover, observe store, observe language, login "
                              "item, moved login item, refresh, wake, loops, first run";
    const std::tuple<LaunchOptions, bool, LaunchOutcome, std::string> cases[] = {
        {{}, false, LaunchOutcome::launched, steps},
        {{.showsWindow = true}, true, LaunchOutcome::handedOver, "single instance, terminate"},
        {{.isRunningTests = true}, false, LaunchOutcome::testHost, ""},
        // One window at most.
        {{.showsWindow = true, .showsAbout = true},
         false,
         LaunchOutcome::launched,
         steps + ", main window"},
        {{.showsAbout = true}, false, LaunchOutcome::launched, steps + ", about"},
        {{.showsPopover = true}, false, LaunchOutcome::launched, steps + ", show popover"},
    };
    for (const auto& [options, otherRuns, outcome, done] : cases) {
        RecordedSteps recorded;
        recorded.otherRuns = otherRuns;
        EXPECT_EQ(runLaunchSequence(options, recorded), outcome);
        EXPECT_EQ(recorded.done, done);
    }
}

TEST(LaunchOptions, ReadsTheCommandLine) {
    const auto parse = [](const std::vector<std::string>& arguments) {
        return LaunchOptions::parse(arguments, {});
    };
    EXPECT_EQ(parse({}), LaunchOptions());
    EXPECT_EQ(parse({"--demo", "--show-window"}),
              (LaunchOptions{.showsWindow = true, .isDemo = true}));
    EXPECT_EQ(parse({"--sandbox", "/a b", "--language=de"}),
              (LaunchOptions{.sandbox = "/a b", .language = "de"}));
    EXPECT_TRUE(parse({"--demo", "--notices"}).postsNotices);
    EXPECT_EQ(parse({"-platform", "offscreen"}), LaunchOptions());
    EXPECT_TRUE(parse({"--demo", "--help"}).asksForHelp);
    EXPECT_TRUE(parse({"-V"}).asksForVersion);
    for (const char* alone : {"--sandbox", "--sandbox=", "--language=", "window", "--helps"}) {
        EXPECT_EQ(parse({"--demo", alone}).offendingArgument, alone);
    }
    for (const char* none : {"", "--demo"}) {
        EXPECT_EQ(parse({"--sandbox", none}).offendingArgument, "--sandbox")
            << "else it would be the machine itself";
    }
    // The picture's option is looked for before all others, and alone.
    for (const LaunchOptionHelp& option : launchOptionHelp()) {
        const std::string names = option.names;
        if (names != "--render-glyph") {
            EXPECT_EQ(parse({names.substr(names.find("--")), "en"}).offendingArgument,
                      *option.placeholder == 0 ? "en" : "")
                << names;
        }
    }
    EXPECT_EQ(parse({"--sandboxes=/x"}).offendingArgument, "--sandboxes=/x");
    EXPECT_TRUE(LaunchOptions::parse({}, {{"XCTestConfigurationFilePath", ""}}).isRunningTests);
}

} // namespace
} // namespace vellmark::tests
