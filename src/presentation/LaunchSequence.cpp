#include "presentation/LaunchSequence.h"

#include "platform/ActivationToken.h"

#include <string_view>

namespace vellmark {

LaunchOptions LaunchOptions::parse(std::span<const std::string> arguments,
                                   const Environment& environment) {
    LaunchOptions options{.isRunningTests = environment.contains("XCTestConfigurationFilePath"),
                          .activationToken = vellmark::activationToken(environment)};
    bool mayBeForeignValue = false;
    for (std::size_t index = 0; index < arguments.size(); ++index) {
        const std::string_view argument = arguments[index];
        // "--name value" and "--name=value", neither of them empty: an empty directory would mean
        // the machine itself.
        const auto value = [&](std::string_view name, std::string& target) {
            if (argument == name && index + 1 < arguments.size() && !arguments[index + 1].empty() &&
                !arguments[index + 1].starts_with("--")) {
                target = arguments[++index];
            } else if (argument.starts_with(name) && argument.size() > name.size() + 1 &&
                       argument[name.size()] == '=') {
                target = argument.substr(name.size() + 1);
            } else {
                return false;
            }
            return true;
        };
        const bool isForeign = argument.starts_with('-') && !argument.starts_with("--");
        if (argument == "--show-window") {
            options.showsWindow = true;
        } else if (argument == "--show-about") {
            options.showsAbout = true;
        } else if (argument == "--show-popover") {
            options.showsPopover = true;
        } else if (argument == "--demo") {
            options.isDemo = true;
        } else if (argument == "--notices") {
            options.postsNotices = true;
        } else if (argument == "--help" || argument == "-h") {
            options.asksForHelp = true;
        } else if (argument == "--version" || argument == "-V") {
            options.asksForVersion = true;
        } else if (!value("--sandbox", options.sandbox) && !value("--language", options.language) &&
                   !isForeign && (argument.starts_with("--") || !mayBeForeignValue) &&
                   options.offendingArgument.empty()) {
            options.offendingArgument = argument;
        }
        mayBeForeignValue = isForeign;
    }
    return options;
}

LaunchOutcome runLaunchSequence(const LaunchOptions& options, LaunchSteps& steps) {
    if (options.isRunningTests) {
        return LaunchOutcome::testHost;
    }
    if (steps.handOverToRunningInstance()) {
        steps.terminate();
        return LaunchOutcome::handedOver;
    }
    steps.becomeAccessory();
    steps.buildMainMenu();
    steps.applyAppearance();
    steps.observeAppearance();
    steps.createStatusItem();
    steps.configurePopover();
    steps.observeStore();
    steps.observeLanguage();
    steps.setUpLaunchAtLogin();
    steps.followMoveAtLogin();
    steps.startLaunchRefresh();
    steps.observeWake();
    steps.startLoops();
    steps.runFirstRun();
    if (options.showsWindow) {
        steps.showMainWindow();
    } else if (options.showsAbout) {
        steps.showAbout();
    } else if (options.showsPopover) {
        steps.showPopover();
    }
    return LaunchOutcome::launched;
}

} // namespace vellmark
