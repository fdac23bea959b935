#pragma once

#include "platform/Machine.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace vellmark {

/// The system's entry that starts the desktop program when the user logs in. Main thread.
class LoginItem {
public:
    enum class State {
        off,
        on,
        needsApproval, ///< asked for; the user has to allow it in the system's settings
    };

    virtual ~LoginItem() = default;
    /// What the system says now.
    virtual State state() const = 0;
    /// Writes the entry anew even if it is as wanted already. Returns the system's reason when it
    /// refuses, otherwise an empty text.
    virtual std::string setEnabled(bool enabled) = 0;
    /// The program or bundle that is to be started.
    virtual std::filesystem::path program() const = 0;
    /// What the entry starts; absent without an entry, or where the system does not tell.
    virtual std::optional<std::filesystem::path> registeredProgram() const = 0;
    /// Opens the pane in which the user allows it, where there is one.
    virtual void openSystemSettings() const {}
};

/// Null where there is none to manage: for a sandbox or demo, or where the program does not know
/// what would have to be started.
std::unique_ptr<LoginItem> makeLoginItem(const Machine& machine);

} // namespace vellmark
