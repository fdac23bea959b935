#pragma once

#include "platform/Machine.h"

#include <span>
#include <string>

namespace vellmark {

/// What the command line and the environment ask of a launch.
struct LaunchOptions {
    /// The program is loaded by a test host: launch does nothing.
    bool isRunningTests = false;
    bool showsWindow = false;
    bool showsAbout = false;
    /// The popover, also of an instance that runs already: for a key of the desktop's.
    bool showsPopover = false;
    /// Simulated agents in a throw-away home.
    bool isDemo = false;
    /// Posts notices to the desktop in a demo and in a sandbox too.
    bool postsNotices = false;
    /// A directory that stands in for this machine; empty for the machine itself.
    std::string sandbox;
    /// Overrides the language for this run; empty for the setting.
    std::string language;
    /// The desktop's leave to take the keyboard; empty without one.
    std::string activationToken;
    /// The help, or the version, is printed and nothing started.
    bool asksForHelp = false;
    bool asksForVersion = false;
    /// An argument that is not known, or an option without its value; empty when all is well.
    std::string offendingArgument;

    /// `arguments` without the program's name. Those with a single dash are the toolkit's and the
    /// system's own, and so is what stands behind one of them.
    static LaunchOptions parse(std::span<const std::string> arguments,
                               const Environment& environment);
    bool operator==(const LaunchOptions&) const = default;
};

/// The steps of a launch, done by the application. `runLaunchSequence` decides which and when.
class LaunchSteps {
public:
    virtual ~LaunchSteps() = default;
    /// Asks whether another instance runs; if so it is brought to the front.
    virtual bool handOverToRunningInstance() = 0;
    virtual void terminate() = 0;
    virtual void becomeAccessory() = 0;
    virtual void buildMainMenu() = 0;
    virtual void applyAppearance() = 0;
    virtual void observeAppearance() = 0;
    virtual void createStatusItem() = 0;
    virtual void configurePopover() = 0;
    virtual void observeStore() = 0;
    virtual void observeLanguage() = 0;
    /// Switches it on at the first launch ever.
    virtual void setUpLaunchAtLogin() = 0;
    /// Follows a program that was moved.
    virtual void followMoveAtLogin() = 0;
    virtual void startLaunchRefresh() = 0;
    virtual void observeWake() = 0;
    virtual void startLoops() = 0;
    virtual void runFirstRun() = 0;
    virtual void showMainWindow() = 0;
    virtual void showAbout() = 0;
    virtual void showPopover() = 0;
};

enum class LaunchOutcome { launched, testHost, handedOver };

/// Runs the steps in their order.
LaunchOutcome runLaunchSequence(const LaunchOptions& options, LaunchSteps& steps);

} // namespace vellmark
