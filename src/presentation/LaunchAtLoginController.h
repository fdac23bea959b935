#pragma once

#include "platform/LoginItem.h"
#include "platform/Preferences.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace vellmark {

/// Starting the desktop program at login: once switched on by itself, then as the user and the
/// system want it. What it says is asked of the system each time. Main thread.
///
/// Keeps "LaunchAtLoginInitialSetupDone", and the program that was registered under
/// "LaunchAtLoginRegisteredPath".
class LaunchAtLoginController {
public:
    enum class State { unavailable, off, on, needsApproval };
    struct Move {
        std::filesystem::path from;
        std::filesystem::path to;
        bool operator==(const Move&) const = default;
    };

    /// `item` null: there is nothing to manage.
    LaunchAtLoginController(Preferences& preferences, std::unique_ptr<LoginItem> item);

    bool canManage() const { return item_ != nullptr; }
    State state() const;
    /// The system's reason when it refuses; empty otherwise, and where nothing can be managed.
    std::string setEnabled(bool enabled);
    void openSystemSettings() const;

    /// Switches it on at the first launch ever.
    void setUpOnce();
    /// Registers the program anew where the one that was registered is gone and this one takes its
    /// place. Tells the move.
    std::optional<Move> followMove();

private:
    Preferences& preferences_;
    std::unique_ptr<LoginItem> item_;
};

} // namespace vellmark
