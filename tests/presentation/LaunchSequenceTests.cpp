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
    std::vector<std::string> done;

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
    void startLaunchRefresh() override { note("refresh"); }
    void observeWake() override { note("wake"); }
    void startLoops() override { note("loops"); }
    void runFirstRun() override { note("first run"); }
    void showMainWindow() override { note("main window"); }
    void showAbout() override { note("about"); }

private:
    void note(std::string step) { done.push_back(std::move(step)); }
};

using Record = std::vector<std::string>;

TEST(LaunchSequence, RunsTheStepsInOrder) {
    RecordedSteps steps;
    EXPECT_EQ(runLaunchSequence({}, steps), LaunchOutcome::launched);
    EXPECT_EQ(steps.done, (Record{"single instance", "accessory", "menu", "appearance",
                                  "observe appearance", "status item", "popover", "observe store",
                                  "observe language", "refresh", "wake", "loops", "first run"}));
}

TEST(LaunchSequence, SecondInstanceGoesBeforeItShowsAnything) {
    RecordedSteps steps;
    steps.otherRuns = true;
    EXPECT_EQ(runLaunchSequence({.showsWindow = true}, steps), LaunchOutcome::handedOver);
    EXPECT_EQ(steps.done, (Record{"single instance", "terminate"}));
}

TEST(LaunchSequence, TestHostDoesNothing) {
    RecordedSteps steps;
    EXPECT_EQ(runLaunchSequence({.isRunningTests = true}, steps), LaunchOutcome::testHost);
    EXPECT_TRUE(steps.done.empty());
}

TEST(LaunchSequence, ShowsOneWindowAtMost) {
    RecordedSteps both;
    runLaunchSequence({.showsWindow = true, .showsAbout = true}, both);
    EXPECT_EQ(both.done.back(), "main window");
    RecordedSteps about;
    runLaunchSequence({.showsAbout = true}, about);
    EXPECT_EQ(about.done.back(), "about");
}

TEST(LaunchOptions, ReadsTheCommandLine) {
    const auto parse = [](const Record& arguments) { return LaunchOptions::parse(arguments, {}); };
    EXPECT_EQ(parse({}), LaunchOptions());
    EXPECT_EQ(parse({"--demo", "--show-window"}),
              (LaunchOptions{.showsWindow = true, .isDemo = true}));
    EXPECT_EQ(parse({"--sandbox", "/a b", "--language=de"}),
              (LaunchOptions{.sandbox = "/a b", .language = "de"}));
    EXPECT_EQ(parse({"-platform", "offscreen"}), LaunchOptions());
    EXPECT_EQ(parse({"--sandbox"}).offendingArgument, "--sandbox");
    EXPECT_EQ(parse({"--sandboxes=/x"}).offendingArgument, "--sandboxes=/x");
    EXPECT_TRUE(LaunchOptions::parse({}, {{"XCTestConfigurationFilePath", ""}}).isRunningTests);
}

} // namespace
} // namespace vellmark::tests
