#pragma once

#include "app/VellmarkAppDelegate.h"
#include "process/RunningChildren.h"
#include "support/AgentSandbox.h"
#include "ui/QtEnvironment.h"
#include "ui/popover/Popover.h"
#include "ui/window/AgentMainWindowView.h"

#include <QApplication>
#include <QWidget>
#include <gtest/gtest.h>

#include <memory>

namespace vellmark::tests {

/// The application on a display that nobody sees, without a bus: its item is the strip.
class LaunchedApplication : public ::testing::Test {
protected:
    void launch(LaunchOptions options = {}) {
        options.language = "en";
        delegate_ = std::make_unique<VellmarkAppDelegate>(options, sandbox_.machine());
        outcome_ = delegate_->applicationDidFinishLaunching();
    }
    /// Termination closes the set of children for good.
    void quit() {
        delegate_.reset();
        RunningChildren::reopen();
    }
    void TearDown() override { quit(); }

    /// The first visible window of a kind; null without one.
    template<typename Window>
    static Window* visible() {
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (auto* found = dynamic_cast<Window*>(window); found && found->isVisible()) {
                return found;
            }
        }
        return nullptr;
    }

    /// Opens the popover; a click within the gesture that closed it is refused, and repeated.
    [[nodiscard]] bool opensPopover() {
        return waitUntil([this] {
            delegate_->togglePopover();
            return visible<Popover>() != nullptr;
        });
    }

    /// The main window, shown as a second launch does; null when it does not come.
    AgentMainWindowView* openWindow() {
        delegate_->applicationShouldHandleReopen(false);
        return visible<AgentMainWindowView>();
    }

    AgentSandbox sandbox_;
    std::unique_ptr<VellmarkAppDelegate> delegate_;
    LaunchOutcome outcome_ = LaunchOutcome::launched;
};

} // namespace vellmark::tests
